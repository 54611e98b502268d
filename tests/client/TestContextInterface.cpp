#include "ContextInterface.h"
#include "ExtensionCatalogue.h"
#include "Records.h"

#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QListView>
#include <QTableView>
#include <QTest>

using namespace records;

class TestContextInterface : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void extensionsInAllThreeStates();
    void versions_data();
    void versions();
    void fullListsEndWithTheirField();
};

namespace {

void setList(Message& record, std::size_t at, const std::vector<std::uint32_t>& codes)
{
    for (std::size_t i = 0; i < codes.size(); ++i)
        record.setU32(at + 4 * i, codes[i]);
}

QString label(const ContextInterface& page, const char* name)
{
    return page.findChild<QLabel*>(QString::fromLatin1(name))->text();
}

const QTableView& table(const ContextInterface& page)
{
    return *page.findChild<QTableView*>(QStringLiteral("table_context_info_es_extensions"));
}

/// A row's cells with a bar between them.
QString row(const ContextInterface& page, int number)
{
    const QAbstractItemModel& model = *table(page).model();
    return model.index(number, 0).data().toString() + QLatin1Char('|')
        + model.index(number, 1).data().toString();
}

const QAbstractItemModel& list(const ContextInterface& page)
{
    return *page.findChild<QListView*>(QStringLiteral("list_context_info_gl_extensions"))->model();
}

} // namespace

void TestContextInterface::extensionsInAllThreeStates()
{
    Message record = context(1);
    setList(record, offset::contextExtensions, {1, 132, 133});
    setList(record, offset::contextExtensionsNotOnHost, {34});
    setList(record, offset::contextExtensionsNotEmulated, {2, 0, 3});
    setList(record, offset::contextHostExtensions, {642, 1, 9999});
    const ContextInterface page(record);

    QStringList rows;
    for (int i = 0; i < table(page).model()->rowCount(); ++i)
        rows.append(row(page, i));
    QVERIFY((table(page).model()->index(0, 1).flags() & Qt::ItemIsEditable) == 0);
    QCOMPARE(table(page).model()->headerData(0, Qt::Horizontal), QVariant("Name"));
    QCOMPARE(table(page).model()->headerData(1, Qt::Horizontal), QVariant("Supported"));
    QCOMPARE(rows,
        QStringList({"GL_APPLE_copy_texture_levels|Yes", "GL_KHR_shader_subgroup|Yes",
            "<unknown extension>|Yes", "GL_OES_depth24|Not supported by the host system",
            "GL_APPLE_sync|Not currently supported by Corvale"}));
    QCOMPARE(label(page, "lbl_context_info_es_extensions_val"), QStringLiteral("5"));
    QCOMPARE(list(page).rowCount(), 3);
    QCOMPARE(list(page).index(0, 0).data().toString(), QStringLiteral("GL_NV_internalformat_sample_query"));
    QCOMPARE(list(page).index(2, 0).data().toString(), QStringLiteral("<unknown extension>"));
    QCOMPARE(label(page, "lbl_context_info_gl_extensions_val"), QStringLiteral("3"));
    QVERIFY(table(page).verticalHeader()->isHidden());
}

void TestContextInterface::versions_data()
{
    QTest::addColumn<QList<quint32>>("codes"); // strict, ES, GLSL ES, GL, GLSL
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("known") << QList<quint32>{1, 4, 3, 19, 13}
                           << QStringList{"OpenGL ES (Emulated)", "3.1", "GLSL ES 3.1", "4.6", "GLSL 4.60"};
    QTest::newRow("loose, no shading language") << QList<quint32>{
        0, 1, 0, 1, 1} << QStringList{"OpenGL ES (Emulated) (Loose mode)", "1.1", "None", "1.0", "GLSL 1.10"};
    QTest::newRow("unknown") << QList<quint32>{2, 6, 5, 20, 14}
                             << QStringList{"OpenGL ES (Emulated)", "<Failed to query OpenGL ES version>",
                                    "<Failed to query GLSL ES version>", "unknown",
                                    "<Failed to query GLSL version>"};
}

void TestContextInterface::versions()
{
    QFETCH(const QList<quint32>, codes);
    Message record = context(1);
    record.setU32(offset::contextStrict, codes[0]);
    record.setU32(offset::contextEsVersion, codes[1]);
    record.setU32(offset::contextGlslEsVersion, codes[2]);
    record.setU32(offset::contextGlVersion, codes[3]);
    record.setU32(offset::contextGlslVersion, codes[4]);
    const ContextInterface page(record);
    const QStringList shown{page.findChild<QGroupBox*>(QStringLiteral("grp_context_info_es"))->title(),
        label(page, "lbl_context_info_es_version_val"), label(page, "lbl_context_info_glsl_es_version_val"),
        label(page, "lbl_context_info_gl_version_val"), label(page, "lbl_context_info_glsl_version_val")};
    QTEST(shown, "texts");
}

void TestContextInterface::fullListsEndWithTheirField()
{
    Message record = context(1);
    for (std::size_t at = offset::contextExtensions; at < ui::messages::recordSize; at += 4)
        record.setU32(at, 2);
    const ContextInterface page(record);
    QCOMPARE(table(page).model()->rowCount(), 3 * 512);
    QCOMPARE(row(page, 511), QStringLiteral("GL_APPLE_sync|Yes"));
    QCOMPARE(row(page, 512), QStringLiteral("GL_APPLE_sync|Not supported by the host system"));
    QCOMPARE(list(page).rowCount(), 512);
}

QTEST_MAIN(TestContextInterface)
#include "TestContextInterface.moc"
