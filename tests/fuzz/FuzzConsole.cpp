// Shows records in a client's page while somebody plays with its controls: the error list must have a row for
// each record of types 7 to 9, and the console must show the end of what it has kept.

#include "Client.h"
#include "ClientInterface.h"
#include "ConsoleOracle.h"
#include "ErrorListModel.h"
#include "Records.h"
#include "Resources.h"

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QFontDatabase>
#include <QPushButton>
#include <QTextEdit>

#include <array>
#include <cstdio>
#include <cstdlib>

#include <fuzzer/FuzzedDataProvider.h>

using namespace records;

namespace {

void demand(bool condition, const char* what, const QString& detail = QString())
{
    if (condition)
        return;
    std::fprintf(stderr, "broken: %s %s\n", what, qPrintable(detail));
    std::abort();
}

Message someRecord(FuzzedDataProvider& input)
{
    Message message = make(static_cast<Type>(input.ConsumeIntegralInRange<std::uint32_t>(0, 24)),
        input.ConsumeIntegral<std::uint32_t>());
    for (const std::size_t at : {std::size_t{8}, std::size_t{12}, std::size_t{20}})
        message.setU32(at, input.ConsumeIntegral<std::uint32_t>());
    static constexpr std::array<std::size_t, 5> texts{offset::text, offset::identifiedText, offset::debugText,
        offset::glErrorFunction, offset::glErrorDescription};
    message.setText(input.PickValueInArray(texts), input.ConsumeRandomLengthString(60));
    return message;
}

template <typename Widget> Widget& child(ClientInterface& page, const char* name)
{
    return *page.findChild<Widget*>(QString::fromLatin1(name));
}

void play(ClientInterface& page, FuzzedDataProvider& input)
{
    static constexpr std::array boxes{
        "chkConsoleAutoScroll", "chkErrors", "chkWarnings", "chkErrorListAutoScroll"};
    switch (input.ConsumeIntegralInRange<int>(0, 6)) {
    case 0:
        child<QPushButton>(page, "btnClear").click();
        break;
    case 1:
        child<QCheckBox>(page, input.PickValueInArray(boxes)).click();
        break;
    case 2: {
        QPalette palette = page.palette();
        palette.setColor(QPalette::Base, QColor::fromRgb(input.ConsumeIntegral<QRgb>()));
        page.setPalette(palette);
        break;
    }
    case 3:
        child<QTextEdit>(page, "txtConsole").selectAll();
        break;
    case 4:
        page.finish(QStringLiteral("end"));
        break;
    case 5:
        page.resize(input.ConsumeIntegralInRange<int>(200, 900), input.ConsumeIntegralInRange<int>(100, 700));
        break;
    default:
        QCoreApplication::processEvents();
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(*argc, *argv);
    registerResources();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider input(bytes, size);
    ClientInterface page(nullptr, 0, QFontDatabase::systemFont(QFontDatabase::FixedFont));
    page.resize(500, 400);
    int rows = 0;
    int budget = 3000;
    while (input.remaining_bytes() > 0 && budget > 0) {
        if (input.ConsumeIntegralInRange<int>(0, 3) == 0) {
            play(page, input);
            continue;
        }
        const Message message = someRecord(input);
        const bool isRow = message.type() >= Type::Warning && message.type() <= Type::GlError;
        const bool isContext = message.type() == Type::ContextInformation;
        const int times = !isContext && input.ConsumeIntegralInRange<int>(0, 15) == 0
            ? input.ConsumeIntegralInRange<int>(1, 2600)
            : 1;
        for (int i = 0; i < times; ++i)
            page.receive(message);
        rows += isRow ? times : 0;
        budget -= isContext ? 100 : times;
    }
    demand(page.errorListModel().rowCount() == rows, "each error and warning has its row");

    child<QCheckBox>(page, "chkConsoleAutoScroll").setChecked(true);
    QElapsedTimer waited;
    for (waited.start(); !page.console().isComplete();) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        demand(!waited.hasExpired(120000), "the console comes to rest");
    }
    const QString wrong =
        console_oracle::whyWrong(page.console(), *child<QTextEdit>(page, "txtConsole").document());
    demand(wrong.isEmpty(), "the console shows what it has kept, but it", wrong);
    return 0;
}
