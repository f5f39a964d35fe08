#include <bench/Bench.h>
#include <bench/MailText.h>
#include <iconv.h>
#include <random>
#include <vector>

namespace bench {
namespace {

const std::vector<std::string> kSentences{
    "いつもお世話になっております。営業部の田中です。",
    "先日お送りしました見積書(No. 2003-0417)の件ですが、ご確認いただけましたでしょうか。",
    "次回の打ち合わせは10月15日(水)の14:30から、本社3階の会議室で行います。",
    "資料は http://www.example.co.jp/docs/report.html に置きましたので、事前にご覧ください。",
    "添付のファイルを開くには Version 4.2 以降が必要です。開けない場合はご連絡ください。",
    "台風の影響で、荷物の到着が二、三日遅れる見込みです。ご迷惑をおかけして申し訳ありません。",
    "Re: サーバーの移行について",
    "> 新しいアドレスは tanaka@example.co.jp です。",
    "来週は大阪に出張しますので、お返事が遅くなるかもしれません。",
    "契約の更新手続きは、今月末までに済ませていただく必要があります。",
    "なお、ご不明な点がございましたら、下記の番号(03-1234-5678)までお問い合わせください。",
    "",
    "それでは、よろしくお願いいたします。",
};

const std::vector<std::string> kKanaSentences{
    "ﾃﾞｰﾀのﾊﾞｯｸｱｯﾌﾟは毎日午前２時に行います。",
    "ﾌﾟﾘﾝﾀの設定を変更して、ﾃｽﾄﾍﾟｰｼﾞを印刷してください。",
    "ｶﾌﾞｼｷｶﾞｲｼｬ ﾆﾎﾝｼｮｳｼﾞ (TEL 03-1234-5678)",
    "ﾒｰﾙｱﾄﾞﾚｽの登録が完了しました。",
};

std::string Repeat(const std::vector<std::string>& sentences, std::size_t bytes) {
    std::string once;
    for (const std::string& sentence : sentences)
        once += Convert(sentence, "CP932", "UTF-8") + "\r\n";
    std::string text;
    while (text.size() < bytes)
        text += once;
    return text;
}

}  // namespace

std::string Convert(const std::string& bytes, const char* to, const char* from) {
    std::string out(bytes.size() * 4 + 16, '\0');
    iconv_t converter = iconv_open(to, from);
    char* source = const_cast<char*>(bytes.data());
    char* target = out.data();
    std::size_t left = bytes.size(), room = out.size();
    Require(iconv(converter, &source, &left, &target, &room) != static_cast<std::size_t>(-1) &&
                iconv(converter, nullptr, nullptr, &target, &room) != static_cast<std::size_t>(-1),
            std::string("iconv cannot convert the text to ") + to);
    iconv_close(converter);
    out.resize(out.size() - room);
    return out;
}

std::string MixedText(std::size_t bytes) {
    return Repeat(kSentences, bytes);
}

std::string MixedTextWithKana(std::size_t bytes) {
    std::vector<std::string> sentences;
    for (std::size_t i = 0; i < kSentences.size(); ++i) {
        sentences.push_back(kSentences[i]);
        if (i % 3 == 0) sentences.push_back(kKanaSentences[i / 3 % kKanaSentences.size()]);
    }
    return Repeat(sentences, bytes);
}

std::string AnyBytes(std::size_t bytes) {
    std::mt19937 random(1);
    std::string text(bytes, '\0');
    for (char& c : text)
        c = static_cast<char>(random() & 0xFF);
    return text;
}

}  // namespace bench
