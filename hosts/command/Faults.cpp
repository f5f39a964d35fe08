#include "Faults.h"

#include "Terminal.h"

namespace {

using hostkit::Failure;
using hostkit::FailureKind;
using hostkit::Field;

const char* OptionOf(Field field) {
    switch (field) {
        case Field::None:
            return "";
        case Field::From:
            return "--from";
        case Field::ReplyTo:
            return "--reply-to";
        case Field::To:
            return "--to";
        case Field::Cc:
            return "--cc";
        case Field::Bcc:
            return "--bcc";
        case Field::Subject:
            return "--subject";
        case Field::Dear:
            return "--dear";
        case Field::Greeting:
            return "--greeting";
        case Field::Body:
            return "--body";
        case Field::Closing:
            return "--closing";
        case Field::Signature:
            return "--signature";
        case Field::Mailer:
            return "--mailer";
        case Field::Attachment:
            return "--attach";
        case Field::Server:
            return "--server";
        case Field::Folder:
            return "--extract";
    }
    return "";
}

const char* AdviceFor(const Failure& failure) {
    if (failure.Kind() == FailureKind::SameFile) return "; name another with -o";
    if (failure.Kind() == FailureKind::Unkept) return "; name another file, or let --in-place write into this one";
    if (failure.Kind() == FailureKind::Login)
        return "; leave --server out, and this machine's mail system, once it is set up for that server, sends the "
               "mail";
    if (failure.Kind() != FailureKind::Uncarried) return "";
    return failure.Where().field == Field::Attachment ? "; give the file another name"
                                                      : "; take it out, or let --replace put 〓 in its place";
}

int StatusOf(const Failure& failure) {
    return failure.Where().field == Field::Server ? kExitUsage : kExitFailed;
}

int Fail(const std::string& text, int status) {
    terminal::Complain(text);
    return status;
}

}  // namespace

void CheckDone(const hostkit::Outcome& outcome) {
    if (outcome.state == hostkit::Outcome::State::Unknown) throw CFailure(outcome.text, kExitUnknown);
    if (outcome.failure) throw *outcome.failure;
    if (!outcome) throw CFailure(outcome.text, kExitCancelled);
    if (!outcome.text.empty()) terminal::Warn(outcome.text);
}

int ReportFault() {
    try {
        throw;
    } catch (const CFailure& failure) {
        return Fail(failure.what(), failure.Status());
    } catch (const Failure& failure) {
        return Fail(failure.Sentence(OptionOf(failure.Where().field)) + AdviceFor(failure), StatusOf(failure));
    } catch (const std::bad_alloc&) {
        return Fail("there is not enough memory; give smaller texts", kExitFailed);
    } catch (const std::exception& error) {
        return Fail(error.what(), kExitFailed);
    }
}
