// CLetterOptions: the options that describe a mail, for every command that makes one. Only an option that was given
// touches the document, so a prepared document keeps the rest. One thread.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include <mailengine/model/Address.h>
#include <mailengine/model/MailDoc.h>

#include "Border.h"
#include "OutputTarget.h"

class CLetterOptions {
public:
    // Adds the options to a command; this object takes their values and must outlive the parse.
    void AddTo(CLI::App& command);

    // Reads the body file if one was named and puts all that was given into doc; addresses and attachments are added
    // to those that doc has. Throws CFailure for a text that cannot be carried, an address that is none, a file that
    // cannot be read; doc is then not to be used.
    void Fill(CMailDoc& doc) const;

    // Throws CFailure if target is one of the attachments.
    void CheckTarget(const COutputTarget& target) const;

    // Whether the body comes from standard input.
    bool ReadsStandardInput() const { return m_strBodyFile == "-"; }

private:
    using Text = std::optional<std::string>;
    using Texts = std::vector<std::string>;

    void AddAddressesTo(CLI::App& command);
    void AddTextsTo(CLI::App& command);
    border::Missing Missing() const { return m_bReplace ? border::Missing::Replace : border::Missing::Refuse; }
    CString LineOf(const std::string& text, const char* option) const;
    CString LetterOf(const std::string& text, const std::string& what) const;
    CAddress AddressOf(const std::string& text, const char* option) const;
    std::vector<CAddress> AddressesOf(const Texts& texts, const char* option) const;
    void FillAddresses(CMailDoc& doc) const;
    void FillLetter(CMailDoc& doc) const;
    void FillBody(CMailDoc& doc) const;
    void FillAttachments(CMailDoc& doc) const;

    Text m_strFrom, m_strReplyTo;
    Texts m_strTo, m_strCc, m_strBcc;
    Text m_strSubject, m_strDear, m_strGreeting, m_strBody, m_strBodyFile, m_strClosing, m_strSignature, m_strMailer;
    Texts m_strAttachments;
    bool m_bSenderBcc = false;
    bool m_bUpperReply = false;
    bool m_bReplace = false;
};

// Takes the double quotes off that FromText leaves around a Japanese name: readers would see them.
void DropQuotes(CAddress& address);
