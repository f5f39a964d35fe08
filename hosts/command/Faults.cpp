#include "Faults.h"

#include <hostkit/characters/Words.h>

#include "Terminal.h"

namespace {

using hostkit::Failure;
using hostkit::FailureKind;
using hostkit::Field;
using hostkit::Marked;
using hostkit::Words;

const char* OptionOf(Field field) {
    switch (field) {
        case Field::None:
            return "";
        case Field::From:
            return "--from";
        case Field::Own:
            return "--own";
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
        case Field::Limit:
            return "--limit";
    }
    return "";
}

// What to do about it; {1} stands for the failure's own sentence.
const char* AdviceFor(const Failure& failure) {
    if (failure.Kind() == FailureKind::SameFile) return Marked("{1}; name another with -o");
    if (failure.Kind() == FailureKind::Unkept)
        return Marked("{1}; name another file, or let --in-place write into this one");
    if (failure.Kind() == FailureKind::Unfit)
        return Marked("{1}; leave --server out, and this machine's mail system sends it as it is");
    if (failure.Kind() == FailureKind::Login)
        return Marked(
            "{1}; leave --server out, and this machine's mail system, once it is set up for that server, "
            "sends the mail");
    if (failure.Kind() == FailureKind::Program)
        return Marked("{1}; name a mail server by --server, or such a program by --sendmail");
    if (failure.Kind() != FailureKind::Uncarried) return "{1}";
    return failure.Where().field == Field::Attachment
               ? Marked("{1}; give the file another name")
               : Marked("{1}; take it out, or let --replace put 〓 in its place");
}

int StatusOf(const Failure& failure) {
    if (failure.Where().field == Field::Server || failure.Where().field == Field::Limit) return kExitUsage;
    switch (failure.Kind()) {
        case FailureKind::SameFile:
            return kExitUsage;
        case FailureKind::Value:
        case FailureKind::Uncarried:
        case FailureKind::Message:
        case FailureKind::Unfit:
            return EX_DATAERR;
        case FailureKind::Input:
            return EX_NOINPUT;
        case FailureKind::NoHost:
            return EX_NOHOST;
        case FailureKind::Delivery:
        case FailureKind::Login:
        case FailureKind::Program:
            return EX_UNAVAILABLE;
        case FailureKind::System:
            return EX_OSERR;
        case FailureKind::Target:
        case FailureKind::Unkept:
            return EX_CANTCREAT;
        case FailureKind::Output:
            return EX_IOERR;
        case FailureKind::Later:
            return EX_TEMPFAIL;
        case FailureKind::Rights:
            return EX_NOPERM;
        case FailureKind::Settings:
            return EX_CONFIG;
    }
    return EX_SOFTWARE;
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
    try {
        if (!outcome.text.empty()) terminal::Warn(outcome.text);
    } catch (const std::bad_alloc&) {  // what was to be done is done all the same
    }
}

int ReportFault() {
    try {
        throw;
    } catch (const CFailure& failure) {
        return Fail(failure.what(), failure.Status());
    } catch (const Failure& failure) {
        return Fail(Words(AdviceFor(failure), failure.Sentence(OptionOf(failure.Where().field))), StatusOf(failure));
    } catch (const std::bad_alloc&) {
        return Fail(Words("there is not enough memory; give smaller texts"), EX_OSERR);
    } catch (const std::exception& error) {
        return Fail(Words("this should not have happened: {1}", error.what()), EX_SOFTWARE);
    }
}
