#include "Stage.h"

#include "MainWindow.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QScreen>
#include <QThread>
#include <QTimer>

#include <exception>

namespace {

/// Milliseconds that something may take, that painting takes at most, and between two looks.
constexpr int patience = 30'000;
constexpr int paintTime = 400;
constexpr int lookTime = 20;

QWidget* openedWidget()
{
    QWidget* popup = QApplication::activePopupWidget();
    return popup ? popup : QApplication::activeModalWidget();
}

} // namespace

Stage::Stage(MainWindow& window, const QString& demoClient, const QString& folder)
    : m_window(window)
    , m_demoClient(demoClient)
    , m_folder(folder)
{
}

Stage::~Stage()
{
    for (const std::unique_ptr<QProcess>& client : m_clients) {
        client->terminate();
        client->waitForFinished(patience);
    }
}

void Stage::startClient(const QStringList& arguments)
{
    auto client = std::make_unique<QProcess>();
    client->setStandardOutputFile(QProcess::nullDevice());
    client->start(m_demoClient, arguments);
    if (!client->waitForStarted())
        throw StageError("the demo client does not start: " + client->errorString().toStdString());
    m_clients.push_back(std::move(client));
}

void Stage::waitFor(const char* what, const std::function<bool()>& condition) const
{
    const QDeadlineTimer end(patience);
    while (!condition()) {
        if (end.hasExpired())
            throw StageError(std::string("waited in vain for ") + what);
        QCoreApplication::processEvents(QEventLoop::AllEvents, lookTime);
        QThread::msleep(1);
    }
}

void Stage::settle() const
{
    const QDeadlineTimer end(paintTime);
    waitFor("the end of a pause", [&end] { return end.hasExpired(); });
}

void Stage::withOpened(const std::function<void()>& open, const std::function<void(QWidget&)>& use) const
{
    std::exception_ptr failure;
    bool used = false;
    // Opening does not return before the dialog is closed, so it is looked for from the event loop.
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        QWidget* opened = openedWidget();
        if (!opened || !opened->isVisible())
            return;
        look.stop();
        used = true;
        try {
            settle();
            use(*opened);
        } catch (const StageError&) {
            failure = std::current_exception();
            opened->close();
        }
    });
    look.start(lookTime);
    open();
    waitFor("a dialog or a menu", [&used] { return used; });
    if (failure)
        std::rethrow_exception(failure);
}

void Stage::take(const char* name, const QWidget& shown) const
{
    settle();
    const QRect area(shown.mapToGlobal(QPoint()), shown.size());
    const QPixmap picture = shown.screen()->grabWindow(0, area.x(), area.y(), area.width(), area.height());
    const QString path = m_folder.filePath(QString::fromLatin1(name) + QStringLiteral(".png"));
    if (picture.isNull() || !picture.save(path))
        throw StageError("cannot write " + path.toStdString());
}

void Stage::take(const char* name) const
{
    take(name, m_window);
}

const QObject* Stage::windowObject() const
{
    return &m_window;
}
