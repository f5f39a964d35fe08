#include "Messages.h"

#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>
#include <memory>
#include <new>
#include <unistd.h>

#include "CommandLine.h"
#include "Faults.h"
#include "StandardFiles.h"
#include "Terminal.h"

namespace {

using hostkit::CountedWords;
using hostkit::Failure;
using hostkit::MessageSource;
using hostkit::Words;

std::unique_ptr<MessageSource> SourceAt(const std::string& file) {
    if (file != "-") return std::make_unique<MessageSource>(file);
    CheckStandardInput();
    return std::make_unique<MessageSource>(STDIN_FILENO, NameOfInput(file));
}

// 0, or the exit status of what work threw, which is told. name is what the work is for by then.
int StatusOf(const std::string& name, const std::function<void()>& work) {
    try {
        work();
        return 0;
    } catch (const Failure&) {
        return ReportFault();
    } catch (const CFailure&) {
        return ReportFault();
    } catch (const std::bad_alloc&) {
    }
    // Here the memory of the attempt is free again.
    try {
        throw Failure(hostkit::FailureKind::System, {hostkit::Field::None, name},
                      Words("there is not enough memory to read it"));
    } catch (const Failure&) {
        return ReportFault();
    }
}

class CReading {
public:
    CReading(const std::string& file, const std::function<void(CFoundMessage)>& take) : m_strFile(file), m_take(take) {}

    // The exit status.
    int Run() {
        Check(StatusOf(NameOfInput(m_strFile), [this] { m_pSource = SourceAt(m_strFile); }));
        while (m_pSource && !m_bEnd) {
            std::string name = NameOfInput(m_strFile);
            Check(StatusOf(name, [&] { TakeNext(name); }));
            terminal::Finish();
        }
        return m_nStatus;
    }

private:
    void Check(int status) {
        if (status != 0) m_nStatus = status;
    }

    void TakeNext(std::string& name) {
        std::optional<MessageSource::Message> message = m_pSource->Next();
        m_bEnd = !message;
        if (!message) return;
        name = message->name;
        if (m_strFile == "-") message->file = m_strFile;
        m_take({std::move(*message), m_pSource->HoldsMany()});
    }

    const std::string& m_strFile;
    const std::function<void(CFoundMessage)>& m_take;
    std::unique_ptr<MessageSource> m_pSource;
    bool m_bEnd = false;
    int m_nStatus = 0;
};

}  // namespace

std::vector<std::string> OrStandardInput(const std::vector<std::string>& files) {
    return files.empty() ? std::vector<std::string>{"-"} : files;
}

int ForEachMessage(const std::vector<std::string>& files, const std::function<void(CFoundMessage)>& take) {
    int status = 0;
    for (const std::string& file : files)
        if (const int one = CReading(file, take).Run(); one != 0) status = one;
    return status;
}

MessageSource::Message TheMessage(const std::string& file, std::optional<std::size_t> number) {
    const std::unique_ptr<MessageSource> source = SourceAt(file);
    std::size_t last = 0;
    while (std::optional<MessageSource::Message> message = source->Next()) {
        last = message->number;
        if (number && last != *number) continue;
        if (!number && source->HoldsMany() && source->Next())
            throw CFailure(Words("{1}: holds many messages; name one with --message", NameOfInput(file)), kExitUsage);
        return std::move(*message);
    }
    const std::string holds =
        last == 0 ? Words("{1}: holds no message", NameOfInput(file))
                  : CountedWords(last, "{2}: holds {1} message", "{2}: holds {1} messages", NameOfInput(file));
    throw CFailure(number ? Words("{1}; --message {2} is not there", holds, *number) : holds);
}
