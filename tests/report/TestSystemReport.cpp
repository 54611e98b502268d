#include "Records.h"
#include "SystemReportGUIReceiver.h"
#include "SystemReportPage.h"
#include "SystemReportViewer.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace records;

Q_DECLARE_METATYPE(Message)

namespace {

Message number(Type type, std::uint32_t value)
{
    Message message = make(type);
    message.setU32(offset::payload, value);
    return message;
}

Message flag(std::uint32_t key, std::uint8_t value)
{
    Message message = number(Type::ReportFlag, key);
    message.setU8(offset::reportFlag, value);
    return message;
}

/// An entry of type 16 or 17; the former takes the value's lowest byte.
Message entry(Type type, std::string_view text, std::uint32_t value)
{
    Message message = make(type);
    message.setText(offset::reportText, text, offset::reportTextEnd);
    message.setU32(offset::reportTextEnd, value);
    return message;
}

Message keyed(Type type, std::uint32_t key, std::string_view text)
{
    Message message = number(type, key);
    message.setText(offset::reportKeyedText, text);
    return message;
}

/// Does something with the dialog that the next statement opens.
template <typename Dialog, typename Action> void onDialog(Action action)
{
    QTimer::singleShot(0, qApp, [action] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        action(*dialog);
    });
}

void saveAs(SystemReportPage& page, const QString& path)
{
    onDialog<QFileDialog>([path](QFileDialog& dialog) {
        dialog.findChild<QLineEdit*>()->setText(path);
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    page.findChild<QPushButton*>(QStringLiteral("btnSaveReport"))->click();
}

} // namespace

class TestSystemReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void text_data();
    void text();
    void tooLong();
    void page();
};

void TestSystemReport::text_data()
{
    QTest::addColumn<QList<Message>>("records");
    QTest::addColumn<QString>("text");
    const QString start = QStringLiteral("System report 7\n===============\n");
    const Message seven = number(Type::ReportLeadingNumber, 7);

    QTest::newRow("everything, the last value counts")
        << QList<Message>{flag(642, 0), flag(5, 1), flag(9999, 7), keyed(Type::ReportOtherKeyedText, 3, "b"),
               keyed(Type::ReportKeyedText, 2, "a"), entry(Type::ReportDetail, "GL_MAX_SAMPLES", 8),
               entry(Type::ReportDetail, "GL_MAX_TEXTURE_SIZE", 4294967295U), flag(5, 0),
               entry(Type::ReportText, "EGL_KHR_image", 1), entry(Type::ReportText, "x", 0),
               keyed(Type::ReportKeyedText, 1, "\xC3\xBC"), number(Type::ReportLeadingNumber, 6), seven}
        << start
            + QStringLiteral("\nHost extensions\n---------------\n"
                             "   5  GL_EXT_texture_edge_clamp          no\n"
                             " 642  GL_NV_internalformat_sample_query  no\n"
                             "9999  <unknown extension>                 7\n"
                             "\nSupport\n-------\n"
                             "EGL_KHR_image  yes\n"
                             "x              no\n"
                             "\nValues\n------\n"
                             "GL_MAX_SAMPLES                8\n"
                             "GL_MAX_TEXTURE_SIZE  4294967295\n"
                             "\nDetails\n-------\n2  a\n1  \u00FC\n"
                             "\nFurther details\n---------------\n3  b\n");
    QTest::newRow("nothing") << QList<Message>{}
                             << "System report without a number\n==============================\n\n"
                                "The report has no entries.\n";
    Message unended = make(Type::ReportText);
    for (std::size_t i = offset::reportText; i < ui::messages::recordSize; ++i)
        unended.setU8(i, 'y');
    QTest::newRow("text without an end, wide text, line breaks and control characters")
        << QList<Message>{seven, unended, entry(Type::ReportText, "a\nb\x1B", 1),
               keyed(Type::ReportKeyedText, 12, "one\r\ntwo\n\n"), keyed(Type::ReportKeyedText, 1, "")}
        << start + QStringLiteral("\nSupport\n-------\n") + QString(512, QLatin1Char('y'))
            + QStringLiteral("  121\na b\u241B  yes\n\nDetails\n-------\n12  one\n    two\n 1  \n");
}

void TestSystemReport::text()
{
    QFETCH(QList<Message>, records);
    QFETCH(QString, text);
    SystemReportGUIReceiver receiver;
    SystemReportPage page(&receiver);
    for (const Message& record : records)
        receiver.receive(record);
    QVERIFY2(page.viewer().text().isEmpty(), "nothing is shown before the report is complete");
    receiver.receive(make(Type::ReportComplete));
    QCOMPARE(page.viewer().text(), text);
}

void TestSystemReport::tooLong()
{
    SystemReportGUIReceiver receiver;
    SystemReportPage page(&receiver);
    const std::string lines(8000, '\n');
    for (std::uint32_t i = 0; i < 5000; ++i) {
        receiver.receive(flag(i, 1));
        receiver.receive(keyed(Type::ReportKeyedText, i, lines + 'x'));
        receiver.receive(keyed(Type::ReportOtherKeyedText, i, 'x' + lines + 'x'));
    }
    receiver.receive(flag(3, 0)); // known, so there is room for it
    receiver.receive(make(Type::ReportComplete));
    const QString text = page.viewer().text();
    QVERIFY(text.size() < 2'000'000);
    QVERIFY(text.contains(QStringLiteral("GL_EXTX_framebuffer_mixed_formats")));
    QVERIFY2(text.endsWith(QStringLiteral("too long: 6806 of its entries are left out.\n")),
        qPrintable(text.right(100)));

    receiver.clear();
    receiver.receive(keyed(Type::ReportKeyedText, 1, 'x' + lines + 'x'));
    receiver.receive(make(Type::ReportComplete));
    QVERIFY2(page.viewer().text().endsWith(QStringLiteral("\n   x\n")), "a new report has all the room");
}

void TestSystemReport::page()
{
    SystemReportGUIReceiver receiver;
    SystemReportPage page(&receiver);
    page.show();
    const auto button = [&page](const char* name) {
        return page.findChild<QPushButton*>(QString::fromLatin1(name));
    };
    const QString hint = page.viewer().toPlainText();
    QVERIFY(!button("btnCopy")->isEnabled() && !button("btnSaveReport")->isEnabled());
    receiver.receive(keyed(Type::ReportKeyedText, 1, "\xC3\xA9"));
    receiver.receive(make(Type::ReportComplete));
    const QString report = page.viewer().toPlainText();
    QVERIFY(report.contains(QStringLiteral("1  \u00E9")));

    button("btnCopy")->click();
    QCOMPARE(QGuiApplication::clipboard()->text(), report);
    const QString path = QDir::tempPath() + QStringLiteral("/report.txt");
    saveAs(page, path);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(file.readAll()), report);
    bool told = false;
    QTimer::singleShot(0, this, [&told] {
        // Behind the file dialog's own end, which the next turn of the event loop brings.
        onDialog<QFileDialog>([&told](QFileDialog& dialog) {
            onDialog<QMessageBox>([&told](QMessageBox& box) {
                told = box.text().contains(QStringLiteral("could not be saved"));
                box.accept();
            });
            dialog.findChild<QLineEdit*>()->setText(QStringLiteral("/proc/report.txt"));
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
    });
    button("btnSaveReport")->click();
    QVERIFY(told);

    receiver.receive(keyed(Type::ReportKeyedText, 2, "too late"));
    receiver.receive(make(Type::ReportComplete));
    QCOMPARE(page.viewer().toPlainText(), report);
    button("btnClear")->click();
    QCOMPARE(page.viewer().toPlainText(), hint);
    QVERIFY(!button("btnCopy")->isEnabled());
    receiver.receive(make(Type::ReportComplete));
    QVERIFY(page.viewer().text().contains(QStringLiteral("no entries")));
}

QTEST_MAIN(TestSystemReport)
#include "TestSystemReport.moc"
