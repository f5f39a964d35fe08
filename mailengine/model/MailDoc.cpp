#include <memory>
#include <new>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/platform/text/Characters.h>

namespace {

constexpr std::int32_t kSmtpPort = 25;  // RFC 5321 4.5.4.2
constexpr std::string_view kPartSeparator = "\r\n\r\n";

void AppendPart(CString& text, std::string_view part) {
    text += part;
    text += kPartSeparator;
}

void AppendBehindSeparator(CString& text, std::string_view part) {
    text += kPartSeparator;
    text += part;
}

}  // namespace

const CRuntimeClass CMailDoc::classCMailDoc = {"CMailDoc", &CMailDoc::CreateObject, &CDocument::classCDocument};

CMailDoc::CMailDoc() : m_sendPort(kSmtpPort) {}

CMailDoc::~CMailDoc() {
    ClearAll();
}

CMailDoc* CMailDoc::Create() {
    CMailDoc* const doc = new (std::nothrow) CMailDoc;
    if (doc != nullptr) doc->Init();
    return doc;
}

CObject* CMailDoc::CreateObject() {
    return new (std::nothrow) CMailDoc;
}

int CMailDoc::Init() {
    return 1;
}

const CRuntimeClass* CMailDoc::GetRuntimeClass() const {
    return &classCMailDoc;
}

void CMailDoc::Serialize(CArchive&) {}

const AFX_MSGMAP* CMailDoc::GetMessageMap() const {
    return CDocument::GetMessageMap();
}

int CMailDoc::OnNewDocument() {
    return CDocument::OnNewDocument() != 0 ? 1 : 0;
}

void CMailDoc::SetText(CString& field, const CString& text) {
    field = text;
    SetModifiedFlag(1);
}

void CMailDoc::SetType(Type type) {
    m_type = type;
    SetModifiedFlag(1);
}

void CMailDoc::SetOriginalSummary(const CString& summary) {
    SetText(m_originalSummary, summary);
}

void CMailDoc::SetSubject(const CString& subject) {
    SetText(m_subject, subject);
}

void CMailDoc::SetDear(const CString& dear) {
    SetText(m_dear, dear);
}

void CMailDoc::SetGreeting(const CString& greeting) {
    SetText(m_greeting, greeting);
}

unsigned int CMailDoc::GetBodySize() const {
    return static_cast<unsigned int>(m_body.View().size());
}

void CMailDoc::SetBody(const CString& body) {
    SetText(m_body, body);
}

void CMailDoc::SetClosing(const CString& closing) {
    SetText(m_closing, closing);
}

void CMailDoc::SetSignature(const CString& signature) {
    SetText(m_signature, signature);
}

void CMailDoc::SetInReplyTo(const CString& inReplyTo) {
    SetText(m_inReplyTo, inReplyTo);
}

void CMailDoc::SetReferences(const CString& references) {
    SetText(m_references, references);
}

void CMailDoc::SetFiles(const std::vector<FileInfo>& files) {
    m_files = files;
    SetModifiedFlag(1);
}

void CMailDoc::GetSendServer(CString& server, std::int32_t& port) const {
    server = m_sendServer;
    port = m_sendPort;
}

void CMailDoc::SetSendServer(const CString& server, std::int32_t port) {
    m_sendServer = server;
    m_sendPort = port;
}

void CMailDoc::GetBodyWithLetter(CString& text) const {
    const std::string_view body = m_body.View();
    const int mark = m_upperReplyFlg != 0 ? m_body.Find(CString("\r\n") + kOriginalMessage) : -1;
    const std::string_view reply = body.substr(0, mark == -1 ? body.size() : static_cast<std::size_t>(mark));
    const std::string_view quoted = body.substr(reply.size());

    CString letter;
    if (!m_dear.IsEmpty()) AppendPart(letter, m_dear.View());
    if (!m_greeting.IsEmpty()) AppendPart(letter, m_greeting.View());
    letter += reply;
    if (!m_closing.IsEmpty()) AppendBehindSeparator(letter, m_closing.View());
    if (!m_signature.IsEmpty()) AppendBehindSeparator(letter, m_signature.View());
    if (!quoted.empty()) AppendBehindSeparator(letter, quoted);
    text = std::move(letter);
}

int CMailDoc::Append(CPtrArray& list, const CAddress& address) {
    try {
        auto copy = std::make_unique<CAddress>(address);
        list.SetAtGrow(list.GetSize(), copy.get());
        (void)copy.release();  // the list's from here on
    } catch (const std::bad_alloc&) {
        return 0;
    }
    SetModifiedFlag(1);
    return 1;
}

int CMailDoc::AppendAll(CPtrArray& list, const CPtrArray& addresses) {
    int result = 1;
    const int size = addresses.GetSize();
    for (int i = 0; i < size && result != 0; ++i)
        if (const auto* address = static_cast<const CAddress*>(addresses.GetAt(i)); address != nullptr)
            result = Append(list, *address);
    return result;
}

int CMailDoc::AppendAll(CPtrArray& list, const std::vector<CAddress>& addresses) {
    int result = 1;
    for (std::size_t i = 0; i < addresses.size() && result != 0; ++i)
        result = Append(list, addresses[i]);
    SetModifiedFlag(1);
    return result;
}

void CMailDoc::Clear(CPtrArray& list) {
    for (int i = 0; i < list.GetSize(); ++i)
        delete static_cast<CAddress*>(list.GetAt(i));
    list.SetSize(0, -1);
}

int CMailDoc::AddToAddress(const CAddress& address) {
    return Append(m_toAddresses, address);
}

int CMailDoc::AddToAddresses(const CPtrArray& addresses) {
    const int result = AppendAll(m_toAddresses, addresses);
    SetModifiedFlag(1);
    return result;
}

int CMailDoc::AddToAddresses(const std::vector<CAddress>& addresses) {
    return AppendAll(m_toAddresses, addresses);
}

void CMailDoc::ClearToAddresses() {
    Clear(m_toAddresses);
}

int CMailDoc::AddCcAddress(const CAddress& address) {
    return Append(m_ccAddresses, address);
}

int CMailDoc::AddCcAddresses(const CPtrArray& addresses) {
    return AppendAll(m_ccAddresses, addresses);
}

int CMailDoc::AddCcAddresses(const std::vector<CAddress>& addresses) {
    return AppendAll(m_ccAddresses, addresses);
}

void CMailDoc::ClearCcAddresses() {
    Clear(m_ccAddresses);
}

int CMailDoc::AddBccAddress(const CAddress& address) {
    return Append(m_bccAddresses, address);
}

int CMailDoc::AddBccAddresses(const CPtrArray& addresses) {
    return AppendAll(m_bccAddresses, addresses);
}

int CMailDoc::AddBccAddresses(const std::vector<CAddress>& addresses) {
    return AppendAll(m_bccAddresses, addresses);
}

void CMailDoc::ClearBccAddresses() {
    Clear(m_bccAddresses);
}
