#include "fuzz/seeds/seeds.h"

#include <QDataStream>
#include <QIODevice>
#include <QStringList>

namespace {

QByteArray loginData(const QString &json)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << json;
    return bytes;
}

void addNames(QMap<QString, QByteArray> *names)
{
    const QStringList plain = {
        QStringLiteral("IMG_0001.JPG"),
        QStringLiteral("con.txt"),
        QStringLiteral("..\\..\\x"),
        QStringLiteral("2024-5-7"),
        QStringLiteral("a:b"),
        QStringLiteral("王 & 李?.jpg"),
        QStringLiteral("\\\\nas\\s\\a"),
        QStringLiteral("/srv/import/a/../b"),
        QStringLiteral("D:\\import\\2024\\a "),
    };
    for (int index = 0; index < plain.size(); ++index)
        names->insert(QStringLiteral("plain-%1").arg(index), plain.at(index).toUtf8());
    names->insert(QStringLiteral("order"), "2024\n5\n7\nTS1\n2\n李\n王");
    names->insert(QStringLiteral("same-names"), "a.jpg\nA.JPG\na (2).jpg\na.jpg");
    names->insert(QStringLiteral("long"), QByteArray(300, 'x') + ".jpg");
    names->insert(QStringLiteral("long-device"), "con." + QByteArray(300, 'x'));
    names->insert(QStringLiteral("half-a-character"), QByteArray("a\0\x3d\xd8", 4));
    names->insert(QStringLiteral("byte-order-mark"), "\xef\xbb\xbf"
                                                     "a.jpg");
}

} // namespace

void addTextSeeds(Seeds *seeds)
{
    addNames(&(*seeds)[QStringLiteral("names")]);
    addNames(&(*seeds)[QStringLiteral("windowsnames")]);

    QMap<QString, QByteArray> &rules = (*seeds)[QStringLiteral("namingrule")];
    rules[QStringLiteral("no-rule")] = "\n{}";
    rules[QStringLiteral("rule-of-numbers")] = "[{\"key\":1,\"separator\":2},3,null]\n{}";

    QMap<QString, QByteArray> &settings = (*seeds)[QStringLiteral("settings")];
    settings[QStringLiteral("credentials")] = "cusername=王\npassword=c2VjcmV0\nremember=1\n";
    settings[QStringLiteral("credentials-forgotten")] = "cusername=a\nremember=0\n";
    settings[QStringLiteral("login-data")] =
        "l" + loginData(QStringLiteral("{\"SUPERID\":\"1\",\"shop_data\":[{\"id\":\"7\"}]}"));
    settings[QStringLiteral("login-data-claiming-much")] = QByteArray("l\x7f\xff\xff\xfe\0{", 7);
    settings[QStringLiteral("installation")] =
        "i[service]\nurl = https://studio.example/\nca-file = studio.pem\ntls-verify = none\n"
        "[ledger]\nenabled = no\n[import]\nverify = \"size\"\n; words\n# words\nnothing\n";
    settings[QStringLiteral("views")] = "v{\"version\":1,\"views\":[{\"name\":\"a\"}]}";

    QMap<QString, QByteArray> &csv = (*seeds)[QStringLiteral("csv")];
    csv[QStringLiteral("formulas")] = "=1+1|+1|-1|@a|\t=1|'=1";
    csv[QStringLiteral("quotes")] = "a\"b|,|\r\n||王";
}
