// How long does it take until a profile is shown in the editor, and does it scroll smoothly? Opens the
// largest built-in profile, and one with 10,000 extensions and 1,000 configs, in the real panel, without a
// display server (offscreen) unless QT_QPA_PLATFORM says else. Prints milliseconds; ends with 1 when it could
// not measure.

#include "BuiltinProfiles.h"
#include "CurrentProfile.h"
#include "ProfileDataWrapper.h"
#include "widgets/Profile.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTextStream>
#include <QTreeView>

#include <algorithm>
#include <vector>

namespace {

constexpr int runs = 11;

std::string largestBuiltin()
{
    std::string_view largest;
    for (const builtin_profiles::TextEntry& entry : builtin_profiles::documents()) {
        if (entry.xml.size() > largest.size())
            largest = entry.xml;
    }
    return std::string(largest);
}

std::string synthetic()
{
    std::string xml = "<profile><device>Many</device><es version=\"3\">";
    for (int i = 0; i < 10000; ++i)
        xml += "<extension>GL_TEST_extension_number_" + std::to_string(i) + "</extension>";
    xml += "</es><egl>";
    for (int id = 0; id < 1000; ++id) {
        xml += "<config id=\"" + std::to_string(id) + "\">";
        for (const char* name :
            {"red_size", "green_size", "blue_size", "alpha_size", "depth_size", "samples"})
            xml += std::string("<") + name + ">8</" + name + '>';
        xml += "<transparency><type>EGL_NONE</type><red>0</red></transparency></config>";
    }
    return xml + "</egl></profile>";
}

double milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

struct Times {
    double open = 0;
    double expand = 0;
    double worstScroll = 0;
    int rows = 0;
};

/// Shows the profile, opens all its rows, and scrolls through each tree in fifty steps.
Times measure(const std::string& xml)
{
    const auto profile = ProfileDataWrapper::fromText(xml, true);
    models::CurrentProfile current(nullptr);
    widgets::Profile panel(current);
    panel.resize(1042, 700);
    panel.show();
    QCoreApplication::processEvents();
    QElapsedTimer timer;
    Times times;
    timer.start();
    panel.setProfile(profile);
    panel.grab();
    times.open = milliseconds(timer);
    for (const QTreeView* tree : panel.findChildren<QTreeView*>())
        times.rows += tree->model()->rowCount();
    timer.restart();
    for (QTreeView* tree : panel.findChildren<QTreeView*>())
        tree->expandAll();
    QCoreApplication::processEvents();
    panel.grab();
    times.expand = milliseconds(timer);
    for (QTreeView* tree : panel.findChildren<QTreeView*>()) {
        for (int step = 0; step <= 50; ++step) {
            timer.restart();
            tree->verticalScrollBar()->setValue(tree->verticalScrollBar()->maximum() * step / 50);
            tree->viewport()->grab();
            times.worstScroll = std::max(times.worstScroll, milliseconds(timer));
        }
    }
    return times;
}

bool report(QTextStream& out, const QString& name, const std::string& xml)
{
    std::vector<double> opened;
    Times worst;
    for (int run = 0; run < runs; ++run) {
        const Times times = measure(xml);
        if (times.rows == 0)
            return false;
        opened.push_back(times.open);
        worst.open = std::max(worst.open, times.open);
        worst.expand = std::max(worst.expand, times.expand);
        worst.worstScroll = std::max(worst.worstScroll, times.worstScroll);
    }
    std::sort(opened.begin(), opened.end());
    out << QStringLiteral("%1 %2 %3 %4 %5\n")
               .arg(name, -36)
               .arg(opened[opened.size() / 2], 9, 'f', 1)
               .arg(worst.open, 9, 'f', 1)
               .arg(worst.expand, 11, 'f', 1)
               .arg(worst.worstScroll, 12, 'f', 1);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QTextStream out(stdout);
    out << QStringLiteral(
        "milliseconds over %1 runs                 open     worst  expand all  scroll step\n")
               .arg(runs);
    const bool measured = report(out, QStringLiteral("largest built-in profile"), largestBuiltin())
        && report(out, QStringLiteral("10,000 extensions and 1,000 configs"), synthetic());
    return measured ? 0 : 1;
}
