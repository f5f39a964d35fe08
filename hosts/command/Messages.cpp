#include "Messages.h"

#include <hostkit/characters/Failure.h>
#include <new>

#include "CommandLine.h"
#include "Faults.h"
#include "Terminal.h"

namespace {

using hostkit::Failure;

int StatusOf(const std::string& file, const std::function<void(const std::string&)>& take) {
    try {
        take(file);
        return 0;
    } catch (const Failure&) {
        return ReportFault();
    } catch (const std::bad_alloc&) {
    }
    // Here the memory of the attempt is free again.
    try {
        throw Failure(hostkit::FailureKind::System, {hostkit::Field::None, NameOfInput(file)},
                      "there is not enough memory to read it");
    } catch (const Failure&) {
        return ReportFault();
    }
}

}  // namespace

int ForEachMessage(const std::vector<std::string>& files, const std::function<void(const std::string&)>& take) {
    int status = 0;
    for (const std::string& file : files)
        if (const int one = StatusOf(file, take); one != 0) status = one;
    terminal::Finish();
    return status;
}
