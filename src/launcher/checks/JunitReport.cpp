#include "Reports.h"
#include "Wording.h"
#include "XmlText.h"

#include <tinyxml2.h>

namespace checks {

namespace {

using tinyxml2::XMLElement;

XMLElement* add(XMLElement& parent, const char* name)
{
    return parent.InsertNewChildElement(name);
}

/// Counts what it adds, as the suite must say.
struct Suite {
    XMLElement& element;
    std::string className;
    int tests = 0;
    int failures = 0;
    int errors = 0;
    int skipped = 0;

    XMLElement* addCase(const std::string& name, const std::string& time = "0")
    {
        ++tests;
        XMLElement* test = add(element, "testcase");
        test->SetAttribute("classname", className.c_str());
        test->SetAttribute("name", name.c_str());
        test->SetAttribute("time", time.c_str());
        return test;
    }
};

std::string secondsOf(std::chrono::milliseconds time)
{
    return std::to_string(time.count() / 1000) + "." + std::to_string(1000 + time.count() % 1000).substr(1);
}

void addRunCase(Suite& suite, const RunResult& run, const Verdict& verdict)
{
    XMLElement* test = suite.addCase("run", secondsOf(run.time));
    const std::string bad = badEnd(run);
    if (bad.empty() || verdict.status(run) == 0)
        return;
    ++suite.errors;
    XMLElement* error = add(*test, "error");
    error->SetAttribute("type", resultOf(run, verdict).c_str());
    error->SetAttribute("message", oneLine(bad).c_str());
}

void addFindingCase(Suite& suite, const sessions::Finding& finding, const Verdict& verdict)
{
    const sessions::Signature& signature = finding.signature;
    const std::string text = oneLine(finding.example);
    XMLElement* test = suite.addCase(title(signature) + ": " + oneLine(signature.text));
    if (verdict.fails(finding)) {
        ++suite.failures;
        XMLElement* failure = add(*test, "failure");
        failure->SetAttribute("type",
            oneLine(signature.code.empty() ? sessions::severityName(signature.severity)
                                           : std::string_view(signature.code))
                .c_str());
        failure->SetAttribute("message", text.c_str());
        const std::string where = frames(finding);
        failure->SetText((cleanText(finding.example) + "\n" + counted(finding.count, "time")
            + (where.empty() ? "" : ", " + where))
                             .c_str());
    } else if (verdict.isKnown(finding)) {
        ++suite.skipped;
        add(*test, "skipped")->SetAttribute("message", "known");
    } else {
        add(*test, "system-out")->SetText(cleanText(finding.example).c_str());
    }
}

} // namespace

std::string junitReport(const Check& check)
{
    tinyxml2::XMLDocument document;
    document.InsertFirstChild(document.NewDeclaration());
    XMLElement* suites = document.NewElement("testsuites");
    document.InsertEndChild(suites);
    const std::string program = oneLine(check.name());
    for (const RunResult& run : check.runs) {
        XMLElement* element = add(*suites, "testsuite");
        element->SetAttribute("name", (program + " on " + oneLine(run.deviceName())).c_str());
        Suite suite{*element, program + "." + oneLine(run.deviceName())};
        addRunCase(suite, run, check.verdict);
        for (const sessions::Finding* finding : run.findings.worstFirst())
            addFindingCase(suite, *finding, check.verdict);
        element->SetAttribute("tests", suite.tests);
        element->SetAttribute("failures", suite.failures);
        element->SetAttribute("errors", suite.errors);
        element->SetAttribute("skipped", suite.skipped);
        element->SetAttribute("time", secondsOf(run.time).c_str());
    }
    return platform::printXml(document, platform::XmlLayout::Indented);
}

} // namespace checks
