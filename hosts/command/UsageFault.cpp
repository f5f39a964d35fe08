#include "UsageFault.h"

#include <algorithm>
#include <hostkit/characters/Words.h>
#include <numeric>

using hostkit::Words;

namespace {

using Options = std::vector<const CLI::Option*>;

// How many letters are to be changed, put in, left out or swapped with their neighbour to make one of the other.
std::size_t Distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> before;
    std::vector<std::size_t> last;
    std::vector<std::size_t> now(other.size() + 1);
    std::iota(now.begin(), now.end(), 0u);
    for (std::size_t i = 1; i <= one.size(); ++i) {
        before = std::exchange(last, now);
        now[0] = i;
        for (std::size_t j = 1; j <= other.size(); ++j) {
            const std::size_t changed = one[i - 1] == other[j - 1] ? 0 : 1;
            now[j] = std::min({last[j] + 1, now[j - 1] + 1, last[j - 1] + changed});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1])
                now[j] = std::min(now[j], before[j - 2] + 1);
        }
    }
    return now.back();
}

// The fault, with the name that may have been meant if one is near.
std::string WithNearest(const std::string& fault, std::string_view word, const std::vector<std::string>& names,
                        const std::string& prefix = "") {
    constexpr std::size_t kLongestWord = 40;
    const std::string* nearest = nullptr;
    std::size_t least = std::min<std::size_t>(3, (word.size() + 3) / 3);  // of a short word every other is near
    for (const std::string& name : names) {
        const std::size_t distance = word.size() > kLongestWord ? least : Distance(word, name);
        if (distance >= least) continue;
        least = distance;
        nearest = &name;
    }
    return nearest == nullptr ? fault : Words("{1}; did you mean {2}?", fault, prefix + *nearest);
}

std::string UnknownOption(const CLI::App& command, const std::string& word) {
    const std::string option = word.substr(0, word.find('='));
    std::string fault = Words("{1}: there is no such option", option);
    if (!option.starts_with("--")) return fault;
    std::vector<std::string> names;
    for (const CLI::Option* known : command.get_options())
        names.insert(names.end(), known->get_lnames().begin(), known->get_lnames().end());
    return WithNearest(fault, option.substr(2), names, "--");
}

// Of what stood on the command line and nobody took, in its order. Empty: all was taken.
std::string FaultOfExtras(const CLI::App& command) {
    const std::vector<std::string> extras = command.remaining();
    // What stands behind "--" is none, whatever it looks like.
    const auto isOption = [&](const std::string& word) {
        return word.size() > 1 && word[0] == '-' && word != "--" &&
               command.get_option_no_throw(word.substr(0, word.find('='))) == nullptr;
    };
    const auto option = std::find_if(extras.begin(), extras.end(), isOption);
    if (command.get_parent() == nullptr && !extras.empty() && option != extras.begin())
        return UnknownCommand(command, extras[0]);
    if (option != extras.end()) return UnknownOption(command, *option);
    std::string list;
    for (const std::string& word : extras)
        list += (list.empty() ? "" : " ") + word;
    return list.empty() ? "" : Words("{1}: more than the command takes", list);
}

const CLI::Option* First(const CLI::App& command, const std::function<bool(const CLI::Option&)>& isMeant) {
    const Options all = command.get_options();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const CLI::Option* option) { return isMeant(*option); });
    return found == all.end() ? nullptr : *found;
}

const CLI::Option* Given(const std::set<CLI::Option*>& options, bool wanted) {
    const auto found = std::find_if(options.begin(), options.end(),
                                    [&](const CLI::Option* option) { return (option->count() > 0) == wanted; });
    return found == options.end() ? nullptr : *found;
}

std::string NameOf(const CLI::Option* option) {
    return option == nullptr ? Words("an option") : option->get_name();
}

std::string FaultOfConflict(const CLI::App& command) {
    const CLI::Option* const one = First(
        command, [](const CLI::Option& option) { return option.count() > 0 && Given(option.get_excludes(), true); });
    const CLI::Option* const other = one == nullptr ? nullptr : Given(one->get_excludes(), true);
    return Words("{1} and {2} cannot both be given", NameOf(one), NameOf(other));
}

std::string FaultOfNeed(const CLI::App& command) {
    const CLI::Option* const one = First(
        command, [](const CLI::Option& option) { return option.count() > 0 && Given(option.get_needs(), false); });
    const CLI::Option* const other = one == nullptr ? nullptr : Given(one->get_needs(), false);
    return Words("{1} needs {2} beside it", NameOf(one), NameOf(other));
}

// An option takes the next word whatever it is, so a value can be missing at the end alone.
std::string FaultOfNumber(const CLI::App& command, const std::string& lastWord) {
    const CLI::Option* const twice = First(
        command, [](const CLI::Option& option) { return option.get_items_expected_max() == 1 && option.count() > 1; });
    return twice != nullptr ? Words("{1} is given more than once", NameOf(twice))
                            : Words("{1}: its value is missing", lastWord);
}

std::string FaultOfFlag(const CLI::App& command, const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        const std::string name = word.substr(0, word.find('='));
        const CLI::Option* const option = command.get_option_no_throw(name);
        if (option != nullptr && name != word && option->get_items_expected_max() == 0)
            return Words("{1} takes no value", name);
    }
    return Words("an option has a value that it cannot take");
}

}  // namespace

std::string UnknownCommand(const CLI::App& program, const std::string& word) {
    std::vector<std::string> names;
    for (const CLI::App* command : program.get_subcommands({}))
        names.push_back(command->get_name());
    return WithNearest(Words("{1}: there is no such command", word), word, names);
}

std::string UsageFault(const CLI::App& command, const std::vector<std::string>& words) {
    if (std::string extras = FaultOfExtras(command); !extras.empty()) return extras;
    try {
        throw;
    } catch (const CLI::RequiredError&) {
        return Words("{1} is missing", NameOf(First(command, [](const CLI::Option& option) {
                         return option.get_required() && option.count() == 0;
                     })));
    } catch (const CLI::ArgumentMismatch&) {
        return FaultOfNumber(command, words.back());
    } catch (const CLI::ExcludesError&) {
        return FaultOfConflict(command);
    } catch (const CLI::RequiresError&) {
        return FaultOfNeed(command);
    } catch (const CLI::ValidationError& error) {
        return error.what();  // the option, and what a check of this program's own says
    } catch (const CLI::ConversionError&) {
        return FaultOfFlag(command, words);
    } catch (const CLI::ParseError&) {
        return Words("the command line cannot be understood");
    }
}
