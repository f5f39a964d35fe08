#include <hostkit/letter/HeaderValues.h>

#include <mailengine/parser/EMailPerser.h>

namespace hostkit {

namespace {

class Reader : private CEMailPerser {
public:
    void Read(const CString& mail, HeaderValues& values) {
        const int end = FindEmptyLine(mail, 0);
        const int bodyTop = end == -1 ? mail.GetLength() : end;
        values.block = mail.Left(bodyTop);
        PerseHeaderFields(mail, bodyTop, bodyTop, values.from, values.to, values.cc, values.messageId,
                          values.references, values.subject, values.date);
        if (const int top = FindTopOfLine(mail, 0, "Reply-To:"); top != -1)
            PerseAddressField(mail, top, "Reply-To:", values.replyTo);
    }

    void ReadNames(const CString& mail, CStringArray& names) {
        CString version;
        CString body;
        int next = 0;
        int top = -1;
        int end = -1;
        if (FindField(mail, 0, "MIME-Version", version, &next))
            PerseMime(mail, next, nullptr, body, names, nullptr, top, end);
    }

    CString Summary(const HeaderValues& values, const CStringArray& fileNames, const AsLine& asLine) {
        CString summary;
        MakeOriginalSummary(Lines(values.from, asLine), Lines(values.to, asLine), Lines(values.cc, asLine),
                            asLine(values.subject.View()), asLine(values.date.View()), fileNames, summary);
        return summary;
    }

private:
    static CStringArray Lines(const CStringArray& values, const AsLine& asLine) {
        CStringArray lines;
        for (int i = 0; i < values.GetSize(); ++i)
            lines.SetAtGrow(i, asLine(values.GetAt(i).View()));
        return lines;
    }
};

}  // namespace

HeaderValues HeaderOf(const CString& mail) {
    HeaderValues values;
    Reader().Read(mail, values);
    return values;
}

CStringArray AttachmentNames(const CString& mail) {
    CStringArray names;
    Reader().ReadNames(mail, names);
    return names;
}

CString SummaryOf(const HeaderValues& values, const CStringArray& fileNames, const AsLine& asLine) {
    return Reader().Summary(values, fileNames, asLine);
}

}  // namespace hostkit
