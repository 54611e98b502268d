#include "DocumentationOpener.h"
#include "Preferences.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

/// The program as `cmake --install` leaves it.
class TestInstall : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void open(const QUrl& url) { m_opened = url.toLocalFile(); }

private Q_SLOTS:
    void initTestCase();
    void programStarts();
    void manualIsFoundAndWhole();
    void iconAndProfilesAreThere();

private:
    QString path(const char* name) const { return m_prefix.filePath(QString::fromUtf8(name)); }

    QTemporaryDir m_prefix;
    QString m_opened;
};

void TestInstall::initTestCase()
{
    QProcess install;
    install.setProcessChannelMode(QProcess::MergedChannels);
    install.start(QStringLiteral(CORVALE_CMAKE),
        {QStringLiteral("--install"), QStringLiteral(CORVALE_BUILD_FOLDER), QStringLiteral("--prefix"),
            m_prefix.path(), QStringLiteral("--component"), QStringLiteral("corvale")});
    QVERIFY(install.waitForFinished());
    QVERIFY2(install.exitCode() == 0, install.readAll().constData());
}

void TestInstall::programStarts()
{
    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedChannels);
    program.start(path("bin/corvale-gui"), QStringList());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QDir::temp().filePath(QStringLiteral("Corvale"))), 30000);
    program.kill();
    QVERIFY(program.waitForFinished());
}

void TestInstall::manualIsFoundAndWhole()
{
    Preferences preferences;
    std::string error;
    QVERIFY2(preferences.load(error), error.c_str());
    const QString name = QStringLiteral("Corvale User Manual.html");
    QVERIFY(QFile::exists(m_prefix.filePath(QStringLiteral(CORVALE_DOCUMENTS) + QLatin1Char('/') + name)));
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open");
    QCOMPARE(DocumentationOpener(preferences, path("bin")).open(name, nullptr), QString());
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    QVERIFY2(m_opened.startsWith(m_prefix.path()), qPrintable(m_opened));

    QFile manual(m_opened);
    QVERIFY(manual.open(QIODevice::ReadOnly));
    static const QRegularExpression reference(QStringLiteral("(?:src|href)=\"([^\"#:]+)\""));
    QRegularExpressionMatchIterator matches = reference.globalMatch(QString::fromUtf8(manual.readAll()));
    QVERIFY(matches.hasNext());
    while (matches.hasNext()) {
        const QString target = matches.next().captured(1);
        QVERIFY2(QFile::exists(QFileInfo(m_opened).dir().filePath(target)), qPrintable(target));
    }
}

void TestInstall::iconAndProfilesAreThere()
{
    QVERIFY(QFile::exists(path("share/icons/hicolor/scalable/apps/corvale-gui.svg")));
    QVERIFY(!QDir(path("share/corvale/profiles")).entryList({QStringLiteral("*.xml")}).isEmpty());
}

QTEST_MAIN(TestInstall)
#include "TestInstall.moc"
