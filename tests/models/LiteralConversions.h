// The rules of both conversions, one after the other and one byte at a time: what fuzzers and tests compare them with.
#pragma once

#include <string>

#include <mailengine/encoding/Language.h>

struct OpenLanguage : CLanguage {
    using CLanguage::ConvHanKana_ZenKana;
    using CLanguage::ConvKanji_JIS_SJIS;
    using CLanguage::ConvKanji_SJIS_JIS;
};

inline std::string KanjiToJis(char lead, char trail) {
    std::string pair(2, '?');
    OpenLanguage::ConvKanji_SJIS_JIS(lead, trail, pair[0], pair[1]);
    return pair;
}

inline std::string KanjiToShiftJis(char row, char cell) {
    std::string pair(2, '?');
    OpenLanguage::ConvKanji_JIS_SJIS(row, cell, pair[0], pair[1]);
    return pair;
}

inline bool IsDouble(char c) {
    return CLanguage::IsJSjisKanji(c) || CLanguage::IsHankakuKana(c);
}

// What SJIS_JIS makes of text behind out.
inline std::string LiteralToJis(const std::string& text, std::string out) {
    enum { Start, Single, Double } state = Start;
    for (std::size_t at = 0; at < text.size();) {
        const char* const src = text.c_str() + at;
        if (!IsDouble(*src)) {
            if (state == Double || (state == Start && !out.empty())) out += "\x1b(B";
            state = Single;
            out += *src;
            ++at;
            continue;
        }
        if (state != Double) out += "\x1b$B";
        state = Double;
        char wide[3] = {src[0], src[1], 0};
        at += CLanguage::IsJSjisKanji(*src) ? 2 : OpenLanguage::ConvHanKana_ZenKana(src, wide);
        if (const std::string pair = KanjiToJis(wide[0], wide[1]); pair != std::string(2, '\0')) out += pair;
    }
    return state == Single ? out : out + "\x1b(B";
}

// What JIS_SJIS makes of text.
inline std::string LiteralToShiftJis(const std::string& text) {
    bool plain = true, e = false, p = false, d = false, kanji = false, half = false;
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == 0x1B) {
            e = true;
            plain = false;
        } else if (plain) {
            out += c;
        } else if (e && (c == '(' || c == '$')) {
            (c == '(' ? p : d) = true;
            e = false;
        } else if (p && (c == 'B' || c == 'J' || c == 'H' || c == 'I')) {
            kanji = p = false;
        } else if (d && (c == '@' || c == 'B')) {
            kanji = true;
            d = false;
        } else {
            e = p = d = false;
            if (!kanji) out += c;
            if (kanji && half) out += KanjiToShiftJis(text[i - 1], c);
            if (kanji) half = !half;
        }
    }
    return std::string(out.c_str());
}
