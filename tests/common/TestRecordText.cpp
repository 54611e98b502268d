#include "RecordText.h"

#include <QTest>

using namespace std::string_view_literals;

Q_DECLARE_METATYPE(std::string_view)

class TestRecordText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void decode_data();
    void decode();
};

void TestRecordText::decode_data()
{
    QTest::addColumn<std::string_view>("bytes");
    QTest::addColumn<QString>("lines");
    QTest::addColumn<QString>("line");
    QTest::newRow("plain") << "glDrawArrays"sv
                           << "glDrawArrays"
                           << "glDrawArrays";
    QTest::newRow("UTF-8") << "h\xC3\xB6he \xF0\x9F\x90\xA6"sv << QStringLiteral(u"h\u00F6he \U0001F426")
                           << QStringLiteral(u"h\u00F6he \U0001F426");
    QTest::newRow("no UTF-8") << "a\xFF\x62"sv << QStringLiteral(u"a\uFFFDb") << QStringLiteral(u"a\uFFFDb");
    QTest::newRow("line ends") << "a\nb\r\nc\rd\te"sv
                               << "a\nb\nc\nd\te"
                               << "a b c d e";
    QTest::newRow("controls") << "a\x1B[31m\x7F\x07"sv << QStringLiteral(u"a\u241B[31m\u2421\u2407")
                              << QStringLiteral(u"a\u241B[31m\u2421\u2407");
    QTest::newRow("separators") << "a\xE2\x80\xA8\x62\xE2\x80\xA9\x63\xC2\x85"sv
                                << QStringLiteral(u"a\uFFFDb\uFFFDc\uFFFD")
                                << QStringLiteral(u"a\uFFFDb\uFFFDc\uFFFD");
    QTest::newRow("marks of frames and objects")
        << "\xEF\xB7\x90\xEF\xB7\x91\xEF\xBF\xBC"sv << QStringLiteral(u"\uFFFD\uFFFD\uFFFD")
        << QStringLiteral(u"\uFFFD\uFFFD\uFFFD");
    QTest::newRow("direction overrides")
        << "\xE2\x80\xAE\x31\xE2\x81\xA6"sv << QStringLiteral(u"\uFFFD1\uFFFD")
        << QStringLiteral(u"\uFFFD1\uFFFD");
    const QString piled = QLatin1Char('e') + QString(16, QChar(0x301)) + QString(3, QChar(0xFFFD));
    QTest::newRow("piled marks")
        << "e\xCC\x81\xCC\x81\xCC\x81\xCC\x81\xCC\x81\xCC\x81\xCC\x81\xCC\x81\xCC\x81\xCC"
           "\x81\xCC\x81\xCC\x81\xCC\x81\xCC\x81\xCC\x81\xCC\x81\xCC\x81\xCC\x81\xCC\x81"sv
        << piled << piled;
    std::string mixed = "e"; // also with a mark of two units and a joiner in between
    for (int i = 0; i < 8; ++i)
        mixed += "\xCC\x81\xF3\xA0\x84\x80\xE2\x80\x8C";
    const std::string mixedBeyond = mixed + "\xCC\x81\xF3\xA0\x84\x80x";
    const QString mixedShown = QString::fromStdString(mixed) + QString(3, QChar(0xFFFD)) + QLatin1Char('x');
    static const std::string kept = mixedBeyond;
    QTest::newRow("piled marks of all kinds") << std::string_view(kept) << mixedShown << mixedShown;
}

void TestRecordText::decode()
{
    QFETCH(const std::string_view, bytes);
    QTEST(record_text::multiLine(bytes), "lines");
    QTEST(record_text::singleLine(bytes), "line");
}

QTEST_GUILESS_MAIN(TestRecordText)
#include "TestRecordText.moc"
