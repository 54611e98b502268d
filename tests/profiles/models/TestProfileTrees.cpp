#include "BuiltinProfiles.h"
#include "ProfileColumns.h"
#include "ProfileData.h"
#include "ProfileDataWrapper.h"
#include "ProfileWriter.h"
#include "models/Profile.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using models::KeyColumn;
using models::ValueColumn;

namespace {

/// Everything that a hand may have left in a profile and that no table knows.
constexpr char oddProfile[] = R"(<profile><device>Odd</device>
<es version="7"><max_texture_size> 4096 </max_texture_size></es>
<es version="11"><extension>GL_B</extension><extension>GL_A</extension><extension>GL_A</extension></es>
<es version="3"><internal_format><name>RGBA8</name><samples>4</samples></internal_format>
 <compressed_texture_format>36196</compressed_texture_format><unknown_limit>12x</unknown_limit>
 <compressed_texture_format>35840</compressed_texture_format><max_texture_size/>
 <max_viewport_dims><height>0</height><width>007</width><depth>3</depth></max_viewport_dims></es>
<egl><config id="-3"><surface_type>EGL_WINDOW_BIT</surface_type><samples>01</samples>
 <transparency><red>7</red><type>EGL_NONE</type><glow><warm>1</warm></glow></transparency>
 <surface_type>EGL_PBUFFER_BIT</surface_type><transparency><red>8</red></transparency>
 <max_pbuffer>whole</max_pbuffer><secret><a><b>EGL_TRUE</b></a></secret>
 <config_caveat>EGL_NONE</config_caveat><level>99999999999</level></config></egl></profile>)";

std::shared_ptr<ProfileDataWrapper> load(std::string_view xml)
{
    return ProfileDataWrapper::fromText(xml, true);
}

std::string written(const models::Profile& profile, const ProfileDataWrapper& original)
{
    ProfileData document = original.data();
    const std::string reason = profile.writeTo(document);
    return reason.empty() ? writeProfile(document) : reason;
}

/// What a write gives when one text of the document is another.
std::string with(std::string xml, const std::string& old, const std::string& changed)
{
    const std::size_t place = xml.find(old);
    return place == std::string::npos ? "not found: " + old : xml.replace(place, old.size(), changed);
}

/// The row whose key, and value where one is given, are displayed like that.
QModelIndex find(const QAbstractItemModel& model, const QStringList& path, int column = KeyColumn,
    const QString& value = {})
{
    QModelIndex found;
    for (const QString& name : path) {
        QModelIndex next;
        for (int row = model.rowCount(found) - 1; row >= 0; --row) {
            const QModelIndex key = model.index(row, KeyColumn, found);
            const bool isLast = &name == &path.last();
            if (key.data().toString() == name
                && (value.isEmpty() || !isLast || key.siblingAtColumn(ValueColumn).data() == value))
                next = key;
        }
        if (!next.isValid())
            return {};
        found = next;
    }
    return found.siblingAtColumn(column);
}

/// Watches a model. The trees announce an insertion within a layout change, which the tester does not know;
/// all else it checks.
std::unique_ptr<QAbstractItemModelTester> watch(QAbstractItemModel& model)
{
    auto tester = std::make_unique<QAbstractItemModelTester>(
        &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QObject::disconnect(&model, &QAbstractItemModel::layoutAboutToBeChanged, tester.get(), nullptr);
    QObject::disconnect(&model, &QAbstractItemModel::layoutChanged, tester.get(), nullptr);
    return tester;
}

} // namespace

/// The tree models of a profile, all watched by the model tester, and what they write back.
class TestProfileTrees : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void unchangedIsWrittenAsItWas();
    void names_data();
    void names();
    void oneChangeChangesOneElement_data();
    void oneChangeChangesOneElement();
    void rowsComeAndGo();
    void changedRowsAreUnsaved();
    void partsJoinTheirElement();
    void markupStaysWithItsRows();
    void refusals();
};

void TestProfileTrees::unchangedIsWrittenAsItWas()
{
    std::vector<std::string_view> texts{oddProfile};
    for (const builtin_profiles::TextEntry& entry : builtin_profiles::documents())
        texts.push_back(entry.xml);
    QVERIFY(texts.size() > 10);
    for (std::string_view xml : texts) {
        const auto wrapper = load(xml);
        models::Profile profile(*wrapper);
        ProfileData document = wrapper->data();
        QCOMPARE(profile.writeTo(document), std::string());
        QCOMPARE(writeProfile(document), writeProfile(wrapper->data()));
        QVERIFY(document == wrapper->data());
    }
}

void TestProfileTrees::names_data()
{
    QTest::addColumn<int>("section");
    QTest::addColumn<QStringList>("path");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("read");

    const QString api = QStringLiteral("OpenGL ES 3.0");
    const QString config = QStringLiteral("Config -3");
    const auto row = [](const char* name, int section, const QStringList& path, const char* value,
                         const QVariant& stored, const char* read) {
        QTest::newRow(name) << section << path << QString::fromLatin1(value) << stored
                            << QString::fromLatin1(read);
    };
    row("unknown version", 0, {"7", "GL_MAX_TEXTURE_SIZE"}, "GL_ATOMIC_COUNTER_BARRIER_BIT", " 4096 ",
        "4096");
    row("enumerant", 0, {api, "GL_COMPRESSED_TEXTURE_FORMATS"}, "GL_ETC1_RGB8_OES", "36196",
        "GL_ETC1_RGB8_OES");
    row("no number", 0, {api, "unknown_limit"}, "12x", "12x", "12x");
    row("zero", 0, {api, "GL_MAX_VIEWPORT_DIMS", "height"}, "GL_NONE", "0", "0");
    row("part of an unknown one", 0, {api, "internal_format", "name"}, "RGBA8", "RGBA8", "RGBA8");
    row("symbolic", 1, {config, "EGL_CONFIG_CAVEAT"}, "EGL_NONE", 0x3038, "EGL_NONE");
    row("one", 1, {config, "EGL_SAMPLES"}, "EGL_TRUE", 1, "1");
    row("a bit", 1, {config, "EGL_SURFACE_TYPE"}, "EGL_WINDOW_BIT", "EGL_WINDOW_BIT", "EGL_WINDOW_BIT");
    row("first of two parts", 1, {config, "EGL_TRANSPARENT_RED"}, "7", 7, "7");
    row("unknown part", 1, {config, "transparency/glow", "warm"}, "EGL_TRUE", 1, "1");
    row("beyond 32 bits", 1, {config, "EGL_LEVEL"}, "99999999999", "99999999999", "99999999999");
}

void TestProfileTrees::names()
{
    QFETCH(int, section);
    QFETCH(QStringList, path);
    models::Profile profile(*load(oddProfile));
    const QAbstractItemModel* model = &profile.configs();
    if (section == 0)
        model = &profile.capabilities();
    const QModelIndex cell = find(*model, path, ValueColumn);
    QVERIFY(cell.isValid());
    QTEST(cell.data().toString(), "value");
    QTEST(cell.data(Qt::EditRole), "stored");
    QTEST(cell.data(Qt::AccessibleTextRole).toString(), "read");
    // A name says which number it stands for.
    const QString name = cell.data(Qt::AccessibleTextRole).toString();
    const QString stored = cell.data(Qt::EditRole).toString().trimmed();
    const QString toolTip = cell.data(Qt::ToolTipRole).toString();
    QCOMPARE(toolTip, name == stored ? QString() : QStringLiteral("%1 = %2").arg(name, stored));
    QVERIFY(!model->headerData(0, Qt::Horizontal, Qt::DisplayRole).isValid());
}

void TestProfileTrees::oneChangeChangesOneElement_data()
{
    QTest::addColumn<int>("section");
    QTest::addColumn<QStringList>("path");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("old");
    QTest::addColumn<QString>("changed");

    const QString config = QStringLiteral("Config -3");
    const QStringList size{QStringLiteral("7"), QStringLiteral("GL_MAX_TEXTURE_SIZE")};
    const auto row = [](const char* name, int section, const QStringList& path, const QVariant& value,
                         const char* old, const char* changed) {
        QTest::newRow(name) << section << path << value << QString::fromLatin1(old)
                            << QString::fromLatin1(changed);
    };
    row("a number", 0, size, "8192", "> 4096 <", ">8192<");
    row("any text", 0, size, "a & b", "> 4096 <", ">a &amp; b<");
    row("the same", 0, size, " 4096 ", "> 4096 <", "> 4096 <");
    row("a part", 0, {"OpenGL ES 3.0", "GL_MAX_VIEWPORT_DIMS", "width"}, 8, "007", "8");
    row("a symbol", 1, {config, "EGL_CONFIG_CAVEAT"}, "EGL_SLOW_CONFIG", "t>EGL_NONE", "t>EGL_SLOW_CONFIG");
    row("the number of a symbol", 1, {config, "EGL_CONFIG_CAVEAT"}, 0x3050, "t>EGL_NONE",
        "t>EGL_SLOW_CONFIG");
    row("the same symbol", 1, {config, "EGL_CONFIG_CAVEAT"}, "12344", "t>EGL_NONE", "t>EGL_NONE");
    row("the same number", 1, {config, "EGL_SAMPLES"}, 1, ">01<", ">01<");
    row("minus one", 1, {config, "EGL_SAMPLES"}, "-1", ">01<", ">-1<");
    row("a decimal", 1, {config, "EGL_SAMPLES"}, "4", ">01<", ">4<");
    row("a bit", 1, {config, "EGL_SURFACE_TYPE"}, "EGL_PIXMAP_BIT", "EGL_WINDOW_BIT", "EGL_PIXMAP_BIT");
    row("a part of an element", 1, {config, "EGL_TRANSPARENT_TYPE"}, "EGL_TRANSPARENT_RGB", "<type>EGL_NONE",
        "<type>EGL_TRANSPARENT_RGB");
    row("one again", 1, {config, "EGL_SAMPLES"}, "EGL_FALSE", ">01<", ">0<");
    row("a sum of bits", 1, {config, "EGL_SURFACE_TYPE"}, 3, "<surface_type>EGL_WINDOW_BIT",
        "<surface_type>EGL_PBUFFER_BIT</surface_type>\n            <surface_type>EGL_PIXMAP_BIT");
    row("a number deep down", 1, {config, "secret", "a", "b"}, 0, "<b>EGL_TRUE", "<b>0");
    row("a name deep down", 1, {config, "secret", "a", "b"}, "EGL_FALSE", "<b>EGL_TRUE", "<b>EGL_FALSE");
}

void TestProfileTrees::oneChangeChangesOneElement()
{
    QFETCH(int, section);
    QFETCH(QStringList, path);
    QFETCH(QVariant, value);
    QFETCH(QString, old);
    QFETCH(QString, changed);
    const auto wrapper = load(oddProfile);
    models::Profile profile(*wrapper);
    QAbstractItemModel* model = &profile.configs();
    if (section == 0)
        model = &profile.capabilities();
    const QModelIndex cell = find(*model, path, ValueColumn);
    QVERIFY(cell.isValid());
    QSignalSpy dataChanged(model, &QAbstractItemModel::dataChanged);
    QVERIFY(!model->setData(cell, value, Qt::DisplayRole));
    QVERIFY(model->setData(cell, value));
    QCOMPARE(dataChanged.size(), 1);
    QCOMPARE(dataChanged.first().at(0).toModelIndex(), cell);
    QCOMPARE(written(profile, *wrapper),
        with(writeProfile(wrapper->data()), old.toStdString(), changed.toStdString()));
}

void TestProfileTrees::rowsComeAndGo()
{
    const auto wrapper = load(oddProfile);
    models::Profile profile(*wrapper);
    for (models::ProfileTree* tree : std::initializer_list<models::ProfileTree*>{
             &profile.capabilities(), &profile.extensions(), &profile.configs()}) {
        const auto tester = watch(*tree);
        QVERIFY(!(tree->flags(tree->index(0, 0)) & Qt::ItemIsEditable));
        tree->setWritable(true);
        QVERIFY(tree->flags(tree->index(0, 0)) & Qt::ItemIsEditable);
        QVERIFY(!tree->insertRows(tree->rowCount() + 1, 1));
        QVERIFY(!tree->removeRows(0, tree->rowCount() + 1));
        const int count = tree->rowCount();
        const QPersistentModelIndex last = tree->index(count - 1, 0);
        QVERIFY(tree->insertRows(0, 2));
        QCOMPARE(last.row(), count + 1);
        QCOMPARE(tree->index(1, 0).data(Qt::EditRole), QVariant(QString()));
        QVERIFY(tree->setData(tree->index(0, 0), 20));
        QVERIFY(tree->insertRows(0, 3, tree->index(0, 0)));
        QVERIFY(tree->setData(tree->index(1, 0, tree->index(0, 0)), QStringLiteral("GL_Z")));
        QVERIFY(tree->removeRows(2, 1, tree->index(0, 0)));
        QVERIFY(tree->removeRows(0, 1, tree->index(0, 0)));
        // A row that never got its number must not take a place in the document.
        QVERIFY(written(profile, *wrapper).starts_with("'' is no "));
        QVERIFY(tree->removeRows(1, 1));
        QCOMPARE(last.row(), count);
        QCOMPARE(tree->rowCount(tree->index(0, 0)), 1);
    }
    const std::string xml = written(profile, *wrapper);
    const std::string section = xml.substr(xml.find("<es version=\"20\">"));
    QVERIFY(section.starts_with(
        "<es version=\"20\">\n        <extension>GL_Z</extension>\n        <GL_Z></GL_Z>"));
    QVERIFY(xml.find("<config id=\"20\">\n            <GL_Z></GL_Z>") != std::string::npos);
    for (models::ProfileTree* tree : std::initializer_list<models::ProfileTree*>{
             &profile.capabilities(), &profile.extensions(), &profile.configs()})
        QVERIFY(tree->removeRow(0));
    QCOMPARE(written(profile, *wrapper), writeProfile(wrapper->data()));
}

void TestProfileTrees::changedRowsAreUnsaved()
{
    const auto wrapper = load(oddProfile);
    models::Profile profile(*wrapper);
    models::EGLConfigTree& configs = profile.configs();
    const auto unsaved = [&configs] {
        QStringList rows;
        const std::function<void(const QModelIndex&)> collect = [&](const QModelIndex& parent) {
            for (int row = 0; row < configs.rowCount(parent); ++row) {
                const QModelIndex index = configs.index(row, KeyColumn, parent);
                if (index.siblingAtColumn(ValueColumn).data(models::UnsavedRole).toBool())
                    rows << index.data().toString();
                collect(index);
            }
        };
        collect({});
        return rows.join(QLatin1Char(' '));
    };
    QCOMPARE(unsaved(), QString());
    const QModelIndex warm =
        find(configs, {"Config -3", "transparency/glow", "warm"}, ValueColumn, QStringLiteral("EGL_TRUE"));
    QVERIFY(configs.setData(warm, 5));
    QVERIFY(configs.setData(configs.index(0, KeyColumn), 4));
    const QModelIndex copy = configs.duplicate(find(configs, {"Config 4", "EGL_SAMPLES"}));
    QVERIFY(copy.isValid());
    QCOMPARE(unsaved(), QStringLiteral("Config 4 EGL_SAMPLES warm"));
    QCOMPARE(copy.data(Qt::AccessibleDescriptionRole).toString(), QStringLiteral("changed, not saved"));
    // What is as it was is saved, also after it was deleted; what has been written is saved.
    QVERIFY(configs.setData(configs.index(0, KeyColumn), -3));
    QVERIFY(configs.setData(warm, 1));
    QVERIFY(configs.removeRow(0));
    QCOMPARE(configs.restoreRemovedRows(), QString());
    QCOMPARE(unsaved(), QStringLiteral("EGL_SAMPLES"));
    ProfileData document = wrapper->data();
    QCOMPARE(profile.writeTo(document), std::string());
    profile.refresh(document);
    QCOMPARE(unsaved(), QString());
}

void TestProfileTrees::partsJoinTheirElement()
{
    const auto wrapper = load(oddProfile);
    models::Profile profile(*wrapper);
    const auto configs = watch(profile.configs());
    const auto capabilities = watch(profile.capabilities());

    // A blue between two parts joins the first of the two elements; a size makes an element of its own.
    const QModelIndex config = find(profile.configs(), {QStringLiteral("Config -3")});
    const QModelIndex type = find(profile.configs(), {"Config -3", "EGL_TRANSPARENT_TYPE"});
    QVERIFY(profile.configs().insertRows(type.row(), 2, config));
    for (const auto& [row, key] : {std::pair(type.row(), 0x3035), std::pair(type.row() + 1, 0x302C)}) {
        QVERIFY(profile.configs().setData(profile.configs().index(row, KeyColumn, config), key));
        QVERIFY(profile.configs().setData(profile.configs().index(row, ValueColumn, config), 5));
    }
    // A new range comes with its parts.
    const QModelIndex api = find(profile.capabilities(), {QStringLiteral("7")});
    QVERIFY(profile.capabilities().insertRows(1, 1, api));
    const QModelIndex range = profile.capabilities().index(1, KeyColumn, api);
    QVERIFY(profile.capabilities().setData(range, QStringLiteral("aliased_point_size_range")));

    const std::string xml = written(profile, *wrapper);
    QVERIFY(xml.find("<red>7</red><blue>5</blue><type>EGL_NONE</type>") != std::string::npos);
    QVERIFY(xml.find("<max_pbuffer><width>5</width></max_pbuffer>") != std::string::npos);
    QVERIFY(xml.find("<aliased_point_size_range><min></min><max></max>") != std::string::npos);
}

void TestProfileTrees::markupStaysWithItsRows()
{
    const auto wrapper = load(R"(<profile><es version="2" a="1"><extension e="1">GL_A</extension>
<x u="1">1</x><x u="2">2</x><x u="3">3</x></es><egl><config id="1" name="one"><!-- c --><level n="1">0</level>
</config><config id="2" name="two"><level n="2">0</level><transparency t="1"><red r="1">1</red></transparency>
<transparency t="2"><red r="2">2</red></transparency></config></egl></profile>)");
    const std::string normal = writeProfile(wrapper->data());
    const auto setNumber = [](models::ProfileTree& tree, int row, int number) {
        QVERIFY(tree.setData(tree.index(row, KeyColumn), number));
    };
    // Of a list one value goes and the next one changes.
    models::Profile list(*wrapper);
    const QModelIndex api = list.capabilities().index(0, KeyColumn);
    QVERIFY(list.capabilities().setData(list.capabilities().index(1, ValueColumn, api), 5));
    QVERIFY(list.capabilities().removeRow(0, api));
    QCOMPARE(written(list, *wrapper),
        with(with(normal, "        <x u=\"1\">1</x>\n", ""), "\"2\">2</x>", "\"2\">5</x>"));
    const QModelIndex red =
        find(list.configs(), {"Config 2", "EGL_TRANSPARENT_RED"}, ValueColumn, QStringLiteral("2"));
    QVERIFY(list.configs().setData(red, 7));
    QVERIFY(list.configs().removeRow(1, red.parent()));
    const std::string xml = written(list, *wrapper);
    QVERIFY(xml.find("<transparency t=\"2\"><red r=\"2\">7") != std::string::npos);
    QVERIFY(xml.find("t=\"1\"") == std::string::npos);

    // Sections get other numbers, also those of one another, and new ones get the old numbers.
    models::Profile sections(*wrapper);
    setNumber(sections.capabilities(), 0, 3);
    setNumber(sections.extensions(), 0, 3);
    for (const auto& [row, id] : {std::pair(0, 9), std::pair(1, 1), std::pair(0, 2)})
        setNumber(sections.configs(), row, id);
    const std::string expected = with(normal, "version=\"2\"", "version=\"3\"");
    const std::size_t one = expected.find("        <config id=\"1\"");
    const std::size_t two = expected.find("        <config id=\"2\"");
    const std::size_t end = expected.find("    </egl>");
    QCOMPARE(written(sections, *wrapper),
        expected.substr(0, one) + with(expected.substr(two, end - two), "id=\"2\"", "id=\"1\"")
            + with(expected.substr(one, two - one), "id=\"1\"", "id=\"2\"") + expected.substr(end));
    setNumber(sections.configs(), 1, 5);
    QVERIFY(sections.configs().duplicate(sections.configs().index(0, KeyColumn), 1).isValid());
    QVERIFY(written(sections, *wrapper).find("<config id=\"1\">") != std::string::npos);
    QVERIFY(written(sections, *wrapper).find("<config id=\"5\" name=\"two\">") != std::string::npos);
}

void TestProfileTrees::refusals()
{
    const auto wrapper = load(oddProfile);
    models::Profile profile(*wrapper);
    QCOMPARE(profile.configs().freeId(), 0);
    QVERIFY(profile.configs().insertRows(1, 2));
    QVERIFY(profile.configs().setData(profile.configs().index(1, 0), 0));
    QVERIFY(!profile.configs().setData(profile.configs().index(2, 0), QStringLiteral("0")));
    QCOMPARE(profile.configs().freeId(), 1);
    QVERIFY(profile.configs().setData(profile.configs().index(2, 0), QStringLiteral("seven")));
    QCOMPARE(profile.configs().index(2, 0).data().toString(), QStringLiteral("seven"));
    QCOMPARE(written(profile, *wrapper), std::string("'seven' is no number of a config"));

    QVERIFY(!profile.extensions().setData(find(profile.extensions(), {QStringLiteral("OpenGL ES 1.1")}), 3));
    QVERIFY(profile.extensions().setData(find(profile.extensions(), {QStringLiteral("OpenGL ES 1.1")}), 2));
}

QTEST_GUILESS_MAIN(TestProfileTrees)
#include "TestProfileTrees.moc"
