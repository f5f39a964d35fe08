// Conversions and Base64 beside libcrypto, GLib, GMime, libc's iconv, nkf and Python's codecs.
#include <bench/Bench.h>
#include <bench/MailText.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gmime/gmime.h>
#include <iconv.h>
#include <memory>
#include <openssl/evp.h>
#include <string>
#include <unistd.h>
#include <vector>

#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Language.h>

namespace {

constexpr std::size_t kTextBytes = 32 << 20;
constexpr std::size_t kLineBytes = 54;  // as the writer has them: 72 characters

const unsigned char* Unsigned(const std::string& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

unsigned int SizeOf(const std::string& bytes) {
    return static_cast<unsigned int>(bytes.size());
}

// A file in the temporary folder, for contestants in other processes; gone at the end.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& bytes) {
        const int descriptor = mkstemp(m_path.data());
        bench::Require(
            descriptor >= 0 && write(descriptor, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()),
            "no room for " + m_path);
        close(descriptor);
    }
    ~TemporaryFile() { unlink(m_path.c_str()); }
    const std::string& Path() const { return m_path; }

private:
    std::string m_path = "/tmp/mailengine-bench-XXXXXX";
};

std::string FirstLine(const std::string& command) {
    char line[256] = "";
    FILE* const pipe = popen(command.c_str(), "r");
    bench::Require(pipe != nullptr && std::fgets(line, sizeof line, pipe) != nullptr && pclose(pipe) == 0, command);
    return line;
}

struct Charsets {
    const char* job;
    void (*convert)(const char*, unsigned int, CString&);
    const char *from, *to;              // as iconv names them
    const char *pythonFrom, *pythonTo;  // null: Python cannot convert this text
    const char* nkf;
};

void AddMemcpy(const std::string& job, const std::string& text) {
    auto target = std::make_shared<std::string>(text.size(), '\0');
    bench::Add(job, bench::kLimit, text.size(), [&text, target] {
        std::memcpy(target->data(), text.data(), text.size());
        benchmark::ClobberMemory();
    });
}

void AddIconv(const Charsets& charsets, const std::string& text) {
    auto target = std::make_shared<std::string>(text.size() * 2, '\0');
    bench::Add(charsets.job, "iconv", text.size(), [&text, charsets, target] {
        iconv_t converter = iconv_open(charsets.to, charsets.from);
        char* source = const_cast<char*>(text.data());
        char* to = target->data();
        std::size_t left = text.size(), room = target->size();
        bench::Require(iconv(converter, &source, &left, &to, &room) == 0 && left == 0, "iconv stopped");
        iconv_close(converter);
    });
}

// Python reads the text, and times its codecs alone.
void AddPython(const Charsets& charsets, const std::string& text, const std::string& path) {
    const std::string command = std::string("/usr/bin/python3 -c \"import time; b=open('") + path +
                                "','rb').read(); t=time.perf_counter(); b.decode('" + charsets.pythonFrom +
                                "').encode('" + charsets.pythonTo + "'); print(time.perf_counter()-t)\"";
    bench::AddTimed(charsets.job, "python", text.size(),
                    [command] { return std::strtod(FirstLine(command).c_str(), nullptr); });
}

void AddNkf(const Charsets& charsets, const std::string& text, const std::string& path) {
    const std::string command = std::string("nkf ") + charsets.nkf + " < " + path + " | wc -c";
    bench::Add(charsets.job, "nkf", text.size(), [command] { FirstLine(command); });
}

void AddConversion(const Charsets& charsets, const std::string& text, const std::string& path) {
    auto out = std::make_shared<CString>();  // keeps its room from round to round, as iconv's buffer does
    bench::Add(charsets.job, bench::kOurs, text.size(), [&text, charsets, out] {
        out->Empty();
        charsets.convert(text.c_str(), SizeOf(text), *out);
        benchmark::ClobberMemory();
    });
    if (charsets.from != nullptr) AddIconv(charsets, text);
    if (charsets.pythonFrom != nullptr) AddPython(charsets, text, path);
    AddNkf(charsets, text, path);
    AddMemcpy(charsets.job, text);
}

void RequireTheSame(const std::string& shiftJis, const std::string& jis) {
    CString out;
    CLanguage::SJIS_JIS(shiftJis.c_str(), SizeOf(shiftJis), out);
    bench::Require(out.View() == jis, "SJIS_JIS and iconv differ");
    CLanguage::JIS_SJIS(jis.c_str(), SizeOf(jis), out);
    bench::Require(out.View() == shiftJis, "JIS_SJIS does not give the text back");
}

// Line by line into one string, as the writer does it.
void EncodeLines(const std::string& bytes) {
    CString line;
    for (std::size_t at = 0; at < bytes.size(); at += kLineBytes) {
        line.Empty();
        CBase64::Encode(Unsigned(bytes) + at, static_cast<unsigned int>(std::min(kLineBytes, bytes.size() - at)), line);
        benchmark::DoNotOptimize(line);
    }
}

void AddEncoders(const std::string& bytes) {
    const std::string job = "base64-encode";
    bench::Add(job, bench::kOurs, bytes.size(), [&bytes] { EncodeLines(bytes); });
    auto target = std::make_shared<std::vector<unsigned char>>(bytes.size() * 2);
    bench::Add(job, "libcrypto", bytes.size(), [&bytes, target] {
        for (std::size_t at = 0; at < bytes.size(); at += kLineBytes)
            EVP_EncodeBlock(target->data(), Unsigned(bytes) + at,
                            static_cast<int>(std::min(kLineBytes, bytes.size() - at)));
    });
    bench::Add(job, "gmime", bytes.size(), [&bytes, target] {
        GMimeEncoding encoder;
        g_mime_encoding_init_encode(&encoder, GMIME_CONTENT_ENCODING_BASE64);
        char* const to = reinterpret_cast<char*>(target->data());
        benchmark::DoNotOptimize(g_mime_encoding_flush(&encoder, bytes.data(), bytes.size(), to));
    });
    AddMemcpy(job, bytes);
}

std::string EncodedLines(const std::string& bytes) {
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += kLineBytes) {
        CString line;
        CBase64::Encode(Unsigned(bytes) + at, static_cast<unsigned int>(std::min(kLineBytes, bytes.size() - at)), line);
        text.append(line.View()).append("\r\n");
    }
    return text;
}

void AddDecoders(const std::string& bytes, const std::string& text, const CString& asString) {
    const std::string job = "base64-decode";
    auto target = std::make_shared<std::vector<unsigned char>>(text.size() + 1);
    unsigned int written = 0;
    bench::Require(CBase64::Decode(asString, target->data(), SizeOf(text) + 1, written) == 1 &&
                       written == bytes.size() && std::memcmp(target->data(), bytes.data(), written) == 0,
                   "Base64 does not give the bytes back");
    bench::Add(job, bench::kOurs, text.size(), [&text, &asString, target] {
        unsigned int made = 0;
        CBase64::Decode(asString, target->data(), SizeOf(text) + 1, made);
        benchmark::ClobberMemory();
    });
    bench::Add(job, "glib", text.size(), [&text, target] {
        gint state = 0;
        guint save = 0;
        benchmark::DoNotOptimize(g_base64_decode_step(text.data(), text.size(), target->data(), &state, &save));
    });
    bench::Add(job, "gmime", text.size(), [&text, target] {
        GMimeEncoding decoder;
        g_mime_encoding_init_decode(&decoder, GMIME_CONTENT_ENCODING_BASE64);
        char* const to = reinterpret_cast<char*>(target->data());
        benchmark::DoNotOptimize(g_mime_encoding_step(&decoder, text.data(), text.size(), to));
    });
    AddMemcpy(job, text);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string mixed = bench::MixedText(kTextBytes);
    const std::string kana = bench::MixedTextWithKana(kTextBytes);
    const std::string jis = bench::Convert(mixed, "ISO-2022-JP", "CP932");
    RequireTheSame(mixed, jis);
    const TemporaryFile mixedFile(mixed), kanaFile(kana), jisFile(jis);
    AddConversion({"sjis-to-jis", CLanguage::SJIS_JIS, "CP932", "ISO-2022-JP", "cp932", "iso2022_jp", "-S -j"}, mixed,
                  mixedFile.Path());
    AddConversion({"sjis-to-jis-with-kana", CLanguage::SJIS_JIS, nullptr, nullptr, nullptr, nullptr, "-S -j"}, kana,
                  kanaFile.Path());
    AddConversion({"jis-to-sjis", CLanguage::JIS_SJIS, "ISO-2022-JP", "CP932", "iso2022_jp", "cp932", "-J -s -x"}, jis,
                  jisFile.Path());
    const std::string bytes = bench::AnyBytes(kTextBytes);
    const std::string text = EncodedLines(bytes);
    const CString asString{std::string_view(text)};
    AddEncoders(bytes);
    AddDecoders(bytes, text, asString);
    return bench::Run(argc, argv);
}
