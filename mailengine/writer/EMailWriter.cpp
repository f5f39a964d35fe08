// The header block and the plain text of a message. JapaneseText.cpp and Attachments.cpp hold the rest of CEMailWriter.
#include <algorithm>
#include <string_view>

#include <mailengine/encoding/Language.h>
#include <mailengine/model/Recipients.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/Texts.h>
#include <mailengine/support/Wire.h>
#include <mailengine/support/platform/system/System.h>
#include <mailengine/writer/EMailWriter.h>

namespace {

// RFC 5322 3.3 fixes the names; the user's locale has no say.
constexpr const char* kDayNames[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char* kMonthNames[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

constexpr int kSubjectPrefixBytes = 9;  // "Subject: "

// QUIRK: the zone is that of standard time also in summer, and a zone less than an hour west of UTC shows as one to
// the east (RFC 5322 3.3 wants the true offset).
CString DateText(const CSystem::LocalFields& time) {
    const std::int32_t secondsWest = time.secondsWest;
    CString text;
    text.Format("%s, %02d %s %d %02d:%02d:%02d %+03d%02d", kDayNames[time.weekday], time.day,
                kMonthNames[time.month - 1], time.year, time.hour, time.minute, time.second, -(secondsWest / 3600),
                (secondsWest < 0 ? -(secondsWest % 3600) : secondsWest % 3600) / 60);
    return text;
}

// What an identifier cannot hold without quotes (RFC 5322 3.2.3), but for the dot; controls and DEL besides.
bool EndsIdentifier(char c) {
    return (c >= 0 && c <= ' ') || c == 0x7F || std::string_view("()<>[]:;@\\,\"").find(c) != std::string_view::npos;
}

// The machine's name as far as an identifier can hold it: behind a line end it would be a field of its own.
CString HostName() {
    char buffer[256];
    std::string_view name;
    if (CSystem::Get().HostName(buffer, sizeof buffer) == 0) name = buffer;
    name = name.substr(0, static_cast<std::size_t>(std::ranges::find_if(name, EndsIdentifier) - name.begin()));
    return CString(name.empty() ? "localhost" : name);
}

// QUIRK: two messages of one process and second share their identifier (RFC 5322 3.6.4 wants each unique).
CString MessageIdText(const CSystem::LocalFields& time) {
    CString text;
    text.Format("<%d%02d%02d%02d%02d%02d.%d@%s>", time.year, time.month, time.day, time.hour, time.minute, time.second,
                CSystem::Get().ProcessId(), HostName());
    return text;
}

void Append(CStringArray& texts, const CString& text) {
    texts.SetAtGrow(texts.GetSize(), text);
}

}  // namespace

CEMailWriter::CEMailWriter(COutputStream* stream, const CMailDoc& doc, CProgressCallback& progress)
    : m_pStream(stream), m_doc(doc), m_progress(progress) {}

int CEMailWriter::Write(CString& error) {
    std::vector<FileInfo> files;
    m_doc.GetFiles(files);
    if (CheckFiles(files, error) == 0) return 0;
    if (WriteHeaderBlock() == 0) {
        error = texts::kHeaderFailed;
        return 0;
    }
    CString text;
    m_doc.GetBodyWithLetter(text);
    return WriteMime(text, files, error);
}

int CEMailWriter::WriteHeaderBlock() {
    return WriteOriginFields() != 0 && WriteDestinationFields() != 0 && WriteIdentityFields() != 0;
}

int CEMailWriter::WriteOriginFields() {
    CAddress from;
    CAddress reply;
    m_doc.GetFromAddress(from);
    m_doc.GetReplyAddress(reply);
    CStringArray text;
    Append(text, ConvAndEncodeAddress(from));
    if (WriteAddressField("From", text) == 0) return 0;
    if (reply.GetMailAddress().IsEmpty()) return 1;
    text.SetAtGrow(0, ConvAndEncodeAddress(reply));
    return WriteAddressField("Reply-To", text);
}

// QUIRK: Bcc stays in the message, for all to see (RFC 5322 3.6.3).
int CEMailWriter::WriteDestinationFields() {
    for (const RecipientList& list : {kToList, kCcList, kBccList}) {
        CStringArray texts;
        ForEachAddress(m_doc, list, [&](const CAddress& address) { Append(texts, ConvAndEncodeAddress(address)); });
        if (list.at == kBccList.at && m_doc.GetSenderBccFlg() != 0) {
            CAddress sender;
            m_doc.GetFromAddress(sender);
            Append(texts, ConvAndEncodeAddress(sender));
        }
        if (texts.GetSize() > 0 && WriteAddressField(list.field, texts) == 0) return 0;
    }
    return 1;
}

int CEMailWriter::WriteIdentityFields() {
    CSystem::LocalFields time;
    if (CSystem::Get().LocalTime(CSystem::Get().Time(), time) == 0) return 0;
    CString mailer;
    CString inReplyTo;
    CString references;
    CString subject;
    m_doc.GetMailerName(mailer);
    m_doc.GetInReplyTo(inReplyTo);
    m_doc.GetReferences(references);
    m_doc.GetSubject(subject);
    return WriteFieldValue("Date", DateText(time)) != 0 &&
           WriteFieldValue("Message-ID", MessageIdText(time)) != 0 &&  //
           WriteFieldValue("X-Mailer", mailer) != 0 &&
           // QUIRK: RFC 5322 3.6.4 spells the field In-Reply-To.
           (inReplyTo.IsEmpty() || WriteFieldValue("InReplyTo", inReplyTo) != 0) &&
           (references.IsEmpty() || WriteFieldValue("References", references) != 0) &&
           WriteFieldValue("Subject", EncodeFieldValue(subject, kSubjectPrefixBytes)) != 0;
}

CString CEMailWriter::ConvAndEncodeAddress(const CAddress& address) {
    // Through const char*: a name or an address that holds a NUL ends at it, as all that goes to a stream does.
    const CAddress plain("", address.GetDisplayName(), address.GetMailAddress());
    if (CLanguage::IsJapanese(plain.GetDisplayName()) == 0) return plain.ToTextForMail();
    return EncodeFieldValue(plain.GetDisplayName(), 0) + " <" + plain.GetMailAddress() + ">";
}

int CEMailWriter::WriteAddressField(const char* name, const CStringArray& addresses) {
    if (addresses.GetSize() == 0) return 0;
    if (m_pStream->WriteString(CString(name) + ": ") == 0) return 0;
    for (int i = 0; i < addresses.GetSize(); ++i) {
        if (i > 0 && m_pStream->WriteString(",\r\n\t") == 0) return 0;
        if (m_pStream->WriteString(addresses.GetAt(i)) == 0) return 0;
    }
    return m_pStream->WriteString(wire::kCrLf) != 0;
}

int CEMailWriter::WriteFieldValue(const char* name, const char* value) {
    return WriteFieldValue(name, value, {});
}

// QUIRK: a plain value is not folded, however long (RFC 5322 2.1.1 limits a line to 998 characters).
int CEMailWriter::WriteFieldValue(const char* name, const char* value, const CStringArray& params) {
    CString field(name);
    field += ": ";
    field += value;
    for (int i = 0; i < params.GetSize(); ++i) {
        field += ";\r\n\t";
        field += static_cast<const char*>(params.GetAt(i));
    }
    field += wire::kCrLf;
    return m_pStream->WriteString(field);
}

int CEMailWriter::WriteMime(const CString& body, const std::vector<FileInfo>& files, CString& error) {
    if (WriteFieldValue("MIME-Version", "1.0") == 0) return 0;
    return files.empty() ? WriteBody(body, error) : WriteMixed(body, files, error);
}
