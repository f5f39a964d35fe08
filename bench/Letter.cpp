#include <bench/Letter.h>
#include <bench/MailText.h>

namespace bench {

Letter SmallLetter(std::size_t number) {
    return {"田中 一郎",
            "tanaka@example.co.jp",
            "鈴木 花子",
            "hanako.suzuki@example.jp",
            "見積書の件" + std::to_string(number),
            "鈴木様\r\n\r\nいつもお世話になっております。営業部の田中です。\r\n"
            "先日お送りしました見積書の件ですが、ご確認いただけましたでしょうか。\r\n"
            "次回の打ち合わせは10月15日(水)の14:30から、本社3階の会議室で行います。\r\n"
            "資料は http://www.example.co.jp/docs/report.html に置きましたので、事前にご覧ください。\r\n"
            "ご不明な点がございましたら、下記の番号(03-1234-5678)までお問い合わせください。\r\n\r\n"
            "それでは、よろしくお願いいたします。\r\n"};
}

Letter Convert(const Letter& letter, const char* to, const char* from) {
    return {Convert(letter.fromName, to, from), Convert(letter.fromAddress, to, from),
            Convert(letter.toName, to, from),   Convert(letter.toAddress, to, from),
            Convert(letter.subject, to, from),  Convert(letter.body, to, from)};
}

}  // namespace bench
