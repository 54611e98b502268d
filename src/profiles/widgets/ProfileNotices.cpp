#include "ProfileNotices.h"

#include "NoticeBar.h"

#include <QBoxLayout>
#include <QPushButton>

namespace widgets {

namespace {

QString reasonText(HiddenElement::Reason reason)
{
    switch (reason) {
    case HiddenElement::Reason::Version:
        return ProfileNotices::tr("its version is not a whole number");
    case HiddenElement::Reason::Id:
        return ProfileNotices::tr("its id is not a whole number");
    case HiddenElement::Reason::Repeated:
        return ProfileNotices::tr("only the first one counts");
    case HiddenElement::Reason::Unknown:
        break;
    }
    return ProfileNotices::tr("the element is not known here");
}

} // namespace

ProfileNotices::ProfileNotices(QBoxLayout& layout, int position, QWidget* panel)
    : QObject(panel)
    , m_empty(new NoticeBar(QStringLiteral("noticeEmpty"), panel))
    , m_discarded(new NoticeBar(QStringLiteral("noticeDiscarded"), panel))
    , m_deleted(new NoticeBar(QStringLiteral("noticeDeleted"), panel))
    , m_hidden(new NoticeBar(QStringLiteral("noticeHidden"), panel))
{
    for (NoticeBar* notice : {m_empty, m_discarded, m_deleted, m_hidden})
        layout.insertWidget(position++, notice);
    connect(m_empty->addButton(QStringLiteral("btnAddFirstApi"), tr("Add &API..."),
                tr("Choose an OpenGL ES version that the device supports")),
        &QPushButton::clicked, this, &ProfileNotices::apiWanted);
    connect(m_empty->addButton(QStringLiteral("btnAddFirstConfig"), tr("Add &Config"),
                tr("Add an EGL configuration to fill with attributes")),
        &QPushButton::clicked, this, &ProfileNotices::configWanted);
    connect(m_discarded->addButton(QStringLiteral("btnBringBackChanges"), tr("&Bring back"),
                tr("Go on with the changes that were discarded")),
        &QPushButton::clicked, this, &ProfileNotices::discardedWanted);
    connect(m_deleted->addButton(QStringLiteral("btnBringBackRows"), tr("B&ring back"),
                tr("Put the deleted rows back to where they were")),
        &QPushButton::clicked, this, &ProfileNotices::deletedWanted);
}

void ProfileNotices::showEmpty(bool isEmpty)
{
    m_empty->setText(isEmpty
            ? tr("This profile is empty. Add the OpenGL ES versions that the device supports, and its EGL "
                 "configs. It is often faster to modify a similar device and save it with \"Save As...\".")
            : QString());
}

void ProfileNotices::showHidden(const std::vector<HiddenElement>& elements)
{
    constexpr qsizetype mostNamed = 3;
    constexpr qsizetype mostExplained = 20;
    constexpr qsizetype longestTag = 60;
    QStringList named;
    QStringList explained;
    for (const HiddenElement& element : elements) {
        QString tag = QString::fromStdString(element.tag);
        if (tag.size() > longestTag)
            tag = tag.left(longestTag) + QChar(0x2026);
        named << tr("%1 in line %2").arg(tag).arg(element.line);
        explained << tr("Line %1: %2: %3").arg(element.line).arg(tag, reasonText(element.reason));
    }
    const qsizetype more = named.size() - mostNamed;
    QString text = QStringList(named.mid(0, mostNamed)).join(QStringLiteral(", "));
    if (more > 0)
        text = tr("%1, and %2 more").arg(text).arg(more);
    m_hidden->setText(
        named.isEmpty() ? QString() : tr("The file keeps what cannot be shown here: %1.").arg(text),
        QStringList(explained.mid(0, mostExplained)).join(QLatin1Char('\n')));
}

void ProfileNotices::offerDiscarded(std::size_t changes)
{
    m_discarded->setText(changes == 1 ? tr("1 change discarded.")
            : changes > 1             ? tr("%1 changes discarded.").arg(changes)
                                      : tr("Changes discarded."));
}

void ProfileNotices::refuseDiscarded()
{
    m_discarded->setText(tr("Save the changes of this profile first: they would be lost. What was discarded "
                            "can be brought back afterwards."));
}

void ProfileNotices::hideDiscarded()
{
    m_discarded->setText({});
}

void ProfileNotices::offerDeleted(int rows)
{
    m_deleted->setText(rows == 0 ? QString()
            : rows == 1          ? tr("1 row deleted.")
                                 : tr("%1 rows deleted.").arg(rows));
}

void ProfileNotices::refuseDeleted(const QString& name)
{
    m_deleted->setText(
        tr("There is another \"%1\" by now. Delete or rename it to bring the old one back.").arg(name));
}

} // namespace widgets
