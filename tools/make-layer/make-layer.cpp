// Makes the wrappers of the client layer from the OpenGL registry and the headers of EGL, at build time. See
// usage() for what it reads and writes.

#include "Availability.h"
#include "LimitedFunctions.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <tinyxml2.h>

namespace {

struct Parameter {
    std::string type; ///< As in C, "const GLchar *const*".
    std::string name;
    char kind = 'p'; ///< See kindOf().
};

struct Function {
    std::string result;
    std::string name;
    std::vector<Parameter> parameters;
    bool hooked = false;
    bool gated = false; ///< A device may lack an enumerant of its arguments, or limit one.
    std::size_t firstLimit = 0;
    std::size_t limitCount = 0;

    bool isEgl() const { return name.starts_with("egl"); }
    /// A bit for each parameter that is an enumerant.
    unsigned enumerants() const
    {
        unsigned bits = 0;
        for (std::size_t i = 0; i < parameters.size(); ++i)
            bits |= std::string_view("enm").find(parameters[i].kind) == std::string_view::npos ? 0U : 1U << i;
        return bits;
    }
};

using Functions = std::map<std::string, Function>;
using EglNames = std::map<unsigned long, std::string>;

[[noreturn]] void fail(const std::string& message)
{
    throw std::runtime_error(message);
}

std::string trimmed(std::string text)
{
    const auto isBlank = [](unsigned char letter) {
        return std::isspace(letter) != 0;
    };
    text.erase(std::find_if_not(text.rbegin(), text.rend(), isBlank).base(), text.end());
    text.erase(text.begin(), std::find_if_not(text.begin(), text.end(), isBlank));
    return text;
}

/// How an argument is shown: e enumerant, x texture unit, n enumerant as a signed number, m primitive mode, b
/// bits, t boolean, i signed, u unsigned, f floating point, E enumerant of EGL, p anything else.
char kindOf(const std::string& type, std::string_view group)
{
    static const std::map<std::string, char, std::less<>> kinds{
        {"GLenum", 'e'},
        {"GLbitfield", 'b'},
        {"GLboolean", 't'},
        {"GLbyte", 'i'},
        {"GLshort", 'i'},
        {"GLint", 'i'},
        {"GLsizei", 'i'},
        {"GLfixed", 'i'},
        {"GLclampx", 'i'},
        {"GLint64", 'i'},
        {"GLint64EXT", 'i'},
        {"GLintptr", 'i'},
        {"GLintptrARB", 'i'},
        {"GLsizeiptr", 'i'},
        {"GLsizeiptrARB", 'i'},
        {"GLubyte", 'u'},
        {"GLushort", 'u'},
        {"GLuint", 'u'},
        {"GLhalfNV", 'u'},
        {"GLuint64", 'u'},
        {"GLuint64EXT", 'u'},
        {"GLhandleARB", 'u'},
        {"GLfloat", 'f'},
        {"GLclampf", 'f'},
        {"GLdouble", 'f'},
        {"GLclampd", 'f'},
        {"EGLenum", 'E'},
        {"EGLBoolean", 't'},
        {"EGLint", 'i'},
        {"EGLAttrib", 'i'},
        {"EGLTime", 'u'},
        {"EGLTimeKHR", 'u'},
    };
    if (group == "PrimitiveType")
        return 'm';
    // They count from GL_TEXTURE0 into what other enumerants have.
    if (group == "TextureUnit" && type == "GLenum")
        return 'x';
    if (group == "InternalFormat" && type == "GLint")
        return 'n';
    const auto found = kinds.find(type);
    return found == kinds.end() ? 'p' : found->second;
}

/// A return type or a parameter of the registry: text, perhaps a ptype element, and a name element.
Parameter parseDeclaration(const tinyxml2::XMLElement& element)
{
    Parameter parsed;
    for (const tinyxml2::XMLNode* node = element.FirstChild(); node; node = node->NextSibling()) {
        const tinyxml2::XMLElement* child = node->ToElement();
        const char* text = child ? child->GetText() : node->Value();
        if (!text)
            fail("an empty piece in a declaration of the registry");
        if (child && std::string_view(child->Name()) == "name")
            parsed.name = text;
        else
            parsed.type += text;
    }
    parsed.type = trimmed(parsed.type);
    const char* group = element.Attribute("group");
    parsed.kind = kindOf(parsed.type, group ? group : "");
    return parsed;
}

void readRegistry(const char* path, Functions& functions)
{
    tinyxml2::XMLDocument document;
    if (document.LoadFile(path) != tinyxml2::XML_SUCCESS)
        fail(document.ErrorStr());
    const tinyxml2::XMLElement* registry = document.FirstChildElement("registry");
    const tinyxml2::XMLElement* commands = registry ? registry->FirstChildElement("commands") : nullptr;
    if (!commands)
        fail(std::string(path) + " has no commands");
    for (const auto* command = commands->FirstChildElement("command"); command;
         command = command->NextSiblingElement("command")) {
        const tinyxml2::XMLElement* prototype = command->FirstChildElement("proto");
        if (!prototype)
            fail("a command without a prototype");
        const Parameter declared = parseDeclaration(*prototype);
        Function function{declared.type, declared.name, {}};
        for (const auto* parameter = command->FirstChildElement("param"); parameter;
             parameter = parameter->NextSiblingElement("param"))
            function.parameters.push_back(parseDeclaration(*parameter));
        functions[function.name] = std::move(function);
    }
}

/// The parameters of a C prototype; none for "void".
std::vector<Parameter> parseParameters(const std::string& list)
{
    std::vector<Parameter> parameters;
    std::istringstream in(list);
    for (std::string declaration; std::getline(in, declaration, ',');) {
        declaration = trimmed(declaration);
        if (declaration == "void")
            continue;
        std::size_t nameStart = declaration.size();
        while (nameStart > 0
            && (std::isalnum(static_cast<unsigned char>(declaration[nameStart - 1]))
                || declaration[nameStart - 1] == '_'))
            --nameStart;
        Parameter parameter{trimmed(declaration.substr(0, nameStart)), declaration.substr(nameStart)};
        const bool isKey =
            parameter.name == "attribute" || parameter.name == "name" || parameter.name == "buffer";
        parameter.kind = parameter.type == "EGLint" && isKey ? 'E' : kindOf(parameter.type, "");
        parameters.push_back(std::move(parameter));
    }
    return parameters;
}

/// "#define EGL_BAD_MATCH 0x3009". Where names share a value, the first one read holds: the core's stand
/// before those of the extensions. Smaller numbers mean too many things.
void readDefinition(const std::string& line, EglNames& names)
{
    constexpr unsigned long leastNamed = 0x3000;
    std::istringstream in(line);
    std::string define, name, value;
    if (!(in >> define >> name >> value) || define != "#define" || !name.starts_with("EGL_")
        || !value.starts_with("0x"))
        return;
    const unsigned long number = std::stoul(value, nullptr, 16);
    if (number >= leastNamed && number <= 0xFFFF)
        names.emplace(number, name);
}

void readHeader(const char* path, Functions& functions, EglNames& names)
{
    std::ifstream in(path);
    if (!in)
        fail(std::string("cannot read ") + path);
    for (std::string line; std::getline(in, line);) {
        readDefinition(line, names);
        constexpr std::string_view start = "EGLAPI ";
        constexpr std::string_view convention = "EGLAPIENTRY ";
        const std::size_t middle = line.find(convention);
        const std::size_t open = line.find('(');
        const std::size_t close = line.rfind(')');
        if (!line.starts_with(start) || middle == std::string::npos || open == std::string::npos
            || close == std::string::npos)
            continue;
        Function function;
        function.result = trimmed(line.substr(start.size(), middle - start.size()));
        function.name = trimmed(line.substr(middle + convention.size(), open - middle - convention.size()));
        function.parameters = parseParameters(line.substr(open + 1, close - open - 1));
        functions[function.name] = std::move(function);
    }
}

void readHooks(const char* path, Functions& functions)
{
    std::ifstream in(path);
    if (!in)
        fail(std::string("cannot read ") + path);
    for (std::string name; std::getline(in, name);) {
        if (name.empty() || name.front() == '#')
            continue;
        const auto found = functions.find(name);
        if (found == functions.end())
            fail("there is no function " + name + " to write by hand");
        found->second.hooked = true;
    }
}

std::string typesOf(const Function& function)
{
    std::string types;
    for (const Parameter& parameter : function.parameters)
        types += (types.empty() ? "" : ", ") + parameter.type;
    return types;
}

std::string declarationOf(const Function& function)
{
    std::string parameters;
    for (std::size_t i = 0; i < function.parameters.size(); ++i)
        parameters += (i > 0 ? ", " : "") + function.parameters[i].type + " a" + std::to_string(i);
    return function.result + ' ' + function.name + '(' + parameters + ')';
}

/// Configs of a device are handed to the host as those that stand in for them.
std::string hostArgumentsOf(const Function& function)
{
    std::string arguments;
    for (std::size_t i = 0; i < function.parameters.size(); ++i) {
        const std::string argument = 'a' + std::to_string(i);
        const bool isConfig = function.parameters[i].type == "EGLConfig";
        arguments += (i > 0 ? ", " : "") + (isConfig ? "hostConfig(" + argument + ')' : argument);
    }
    return arguments;
}

std::string argumentsOf(const Function& function, std::string_view around)
{
    std::string arguments;
    for (std::size_t i = 0; i < function.parameters.size(); ++i) {
        const std::string argument = 'a' + std::to_string(i);
        arguments +=
            (i > 0 ? ", " : "") + (around.empty() ? argument : std::string(around) + '(' + argument + ')');
    }
    return arguments;
}

/// Functions that make surfaces of a config have it behind the display.
bool hasConfig(const Function& function)
{
    return function.parameters.size() > 1 && function.parameters[1].type == "EGLConfig";
}

/// A call of the host's function, with what it returns checked and passed on.
void writeWrapper(std::ostream& out, const Function& function)
{
    const bool isVoid = function.result == "void";
    const bool hasDisplay = !function.parameters.empty() && function.parameters.front().type == "EGLDisplay";
    const std::string pointer = function.result + " (*)(" + typesOf(function) + ')';
    std::string arguments = argumentsOf(function, "argument");
    arguments.insert(0, 1, '{').push_back('}');
    out << declarationOf(function) << "\n{\n";
    if (function.isEgl())
        out << "    Host& host = hostOf(" << (hasDisplay ? "a0" : "") << ");\n"
            << "    const auto call = host.function<" << pointer << ">(Fn::" << function.name << ");\n";
    else
        out << "    Context& context = currentContext();\n"
            << (function.gated ? "    if (context.gate && refuses(context, Fn::" + function.name + ", "
                           + arguments + "))\n        return" + (isVoid ? "" : " {}") + ";\n"
                               : "")
            << "    const auto call = context.function<" << pointer << ">(Fn::" << function.name << ");\n";
    out << "    " << (isVoid ? "" : "const auto result = ") << "call(" << hostArgumentsOf(function) << ");\n";
    if (function.result == "EGLSurface" && hasConfig(function))
        out << "    noteSurface(a0, result, a1);\n";
    if (function.isEgl())
        out << "    checkEgl(host, Fn::" << function.name << ", " << arguments << ");\n";
    else
        out << "    if (context.mustCheck) [[unlikely]]\n        checkGl(context, Fn::" << function.name
            << ", " << arguments << ");\n";
    out << (isVoid ? "" : "    return result;\n") << "}\n\n";
}

constexpr std::size_t wrapperFiles = 4;

void writeWrappers(const std::string& folder, const Functions& functions)
{
    std::array<std::ofstream, wrapperFiles> files;
    for (std::size_t i = 0; i < files.size(); ++i) {
        files[i].open(folder + "/LayerWrappers" + std::to_string(i) + ".cpp");
        files[i] << "#include \"WrapperParts.h\"\n\nnamespace layer::generated {\n\n";
    }
    std::size_t index = 0;
    for (const auto& [name, function] : functions)
        writeWrapper(files[index++ * wrapperFiles / functions.size()], function);
    for (std::ofstream& file : files)
        file << "} // namespace layer::generated\n";
}

void writeHeader(const std::string& folder, const Functions& functions)
{
    std::ofstream out(folder + "/LayerFunctions.h");
    out << "#pragma once\n\n#include \"GlTypes.h\"\n\nnamespace layer {\n\nenum class Fn : std::uint16_t {\n";
    for (const auto& [name, function] : functions)
        out << "    " << name << ",\n";
    out << "};\n\ninline constexpr std::size_t functionCount = " << functions.size()
        << ";\n\nnamespace generated {\n";
    for (const auto& [name, function] : functions)
        out << declarationOf(function) << ";\n";
    out << "}\n\nnamespace hooks {\n";
    for (const auto& [name, function] : functions) {
        if (function.hooked)
            out << declarationOf(function) << ";\n";
    }
    out << "}\n\n} // namespace layer\n";
}

void writeTable(const std::string& folder, const Functions& functions)
{
    std::ofstream out(folder + "/LayerFunctionTable.inc");
    for (const auto& [name, function] : functions) {
        out << "{\"" << name << "\", reinterpret_cast<void*>(&"
            << (function.hooked ? "hooks::" : "generated::") << name << "), \"";
        for (const Parameter& parameter : function.parameters)
            out << parameter.kind << parameter.name << ' ';
        out << "\", " << function.enumerants() << "U, " << function.firstLimit << ", " << function.limitCount
            << "},\n";
    }
}

/// What a preloaded library offers in place of the program's libraries: every function under its own name.
void writeExports(const std::string& folder, const Functions& functions)
{
    std::ofstream out(folder + "/LayerExports.cpp");
    out << "#include \"LayerFunctions.h\"\n\nextern \"C\" {\n\n";
    for (const auto& [name, function] : functions)
        out << "[[gnu::visibility(\"default\")]] " << declarationOf(function)
            << "\n{\n    return layer::" << (function.hooked ? "hooks::" : "generated::") << name << '('
            << argumentsOf(function, "") << ");\n}\n\n";
    out << "}\n";
}

void writeEglNames(const std::string& folder, const EglNames& names)
{
    std::ofstream out(folder + "/LayerEglNames.inc");
    for (const auto& [value, name] : names)
        out << "{" << value << ", \"" << name << "\"},\n";
}

/// Writes what devices limit, and notes it with the functions.
void writeDeviceRules(
    const std::string& folder, const char* registryPath, const char* limitsPath, Functions& functions)
{
    std::vector<std::string> names;
    LimitedFunctions::Functions parameters;
    for (const auto& [name, function] : functions) {
        names.push_back(name);
        for (const Parameter& parameter : function.parameters)
            parameters[name].push_back(parameter.name);
    }
    const Availability availability(registryPath);
    const LimitedFunctions limited(limitsPath, parameters, availability);
    availability.write(folder, names);
    limited.write(folder);
    for (auto& [name, function] : functions) {
        function.firstLimit = limited.first(name);
        function.limitCount = limited.count(name);
        function.gated =
            availability.hasFunction(name) && (function.limitCount > 0 || function.enumerants() != 0);
    }
}

int usage()
{
    std::cerr << "Usage: make-layer FOLDER GL_XML HOOKS LIMITS EGL_HEADER...\n"
                 "Writes LayerFunctions.h, LayerFunctionTable.inc, LayerEglNames.inc, LayerAvailability.inc, "
                 "LayerLimits.inc and\n"
                 "the wrappers of all functions into a folder. HOOKS has the names of the functions that are "
                 "written by hand,\n"
                 "LIMITS what devices limit.\n";
    return 2;
}

} // namespace

int main(int argumentCount, char* arguments[])
{
    if (argumentCount < 6)
        return usage();
    try {
        Functions functions;
        EglNames names;
        readRegistry(arguments[2], functions);
        for (int i = 5; i < argumentCount; ++i)
            readHeader(arguments[i], functions, names);
        readHooks(arguments[3], functions);
        writeDeviceRules(arguments[1], arguments[2], arguments[4], functions);
        writeHeader(arguments[1], functions);
        writeTable(arguments[1], functions);
        writeWrappers(arguments[1], functions);
        writeExports(arguments[1], functions);
        writeEglNames(arguments[1], names);
    } catch (const std::exception& error) {
        std::cerr << "make-layer: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
