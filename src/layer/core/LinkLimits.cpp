#include "LinkLimits.h"

#include "DeviceGate.h"
#include "GlEnumerants.h"

#include <algorithm>
#include <array>
#include <limits>

namespace layer {

namespace {

constexpr GLenum uniform = 0x92E1;
constexpr GLenum uniformBlock = 0x92E2;
constexpr GLenum programInput = 0x92E3;
constexpr GLenum programOutput = 0x92E4;
constexpr GLenum shaderStorageBlock = 0x92E6;
constexpr GLenum activeResources = 0x92F5;
constexpr GLenum resourceType = 0x92FA;
constexpr GLenum resourceArraySize = 0x92FB;
constexpr GLenum resourceBlockIndex = 0x92FD;
constexpr GLenum resourceDataSize = 0x9303;
constexpr GLenum resourceLocation = 0x930E;

/// What a stage may use, by the enumerants of its limits; gl::none for what has no limit.
struct Stage {
    const char* name;
    GLenum isReferenced; ///< A property of what the stage uses.
    GLenum vectors, components, samplers, images, counters, blocks, storageBlocks;
};
constexpr Stage stages[] = {
    {"the vertex shader", 0x9306, 0x8DFB, 0x8B4A, 0x8B4C, 0x90CA, 0x92D2, 0x8A2B, 0x90D6},
    {"the fragment shader", 0x930A, 0x8DFD, 0x8B49, 0x8872, 0x90CE, 0x92D6, 0x8A2D, 0x90DA},
    {"the compute shader", 0x930B, gl::none, 0x8263, 0x91BC, 0x91BD, 0x8265, 0x91BB, 0x90DB},
};
constexpr Stage allStages{
    "the program", gl::none, gl::none, gl::none, 0x8B4D, 0x90CF, 0x92D7, 0x8A2E, 0x90DC};

struct Type {
    int columns = 1;
    int components = 1; ///< Of a column.
    bool isSampler = false;
    bool isImage = false;
    bool isCounter = false;
};

Type typeOf(GLenum type)
{
    const auto isBetween = [=](GLenum first, GLenum last) {
        return type >= first && type <= last;
    };
    const auto vector = [=](GLenum first) {
        return Type{1, static_cast<int>(type - first) + 2};
    };
    if (isBetween(0x8B50, 0x8B52)) // GL_FLOAT_VEC2 to 4
        return vector(0x8B50);
    if (isBetween(0x8B53, 0x8B55)) // GL_INT_VEC2 to 4
        return vector(0x8B53);
    if (isBetween(0x8B57, 0x8B59)) // GL_BOOL_VEC2 to 4
        return vector(0x8B57);
    if (isBetween(0x8DC6, 0x8DC8)) // GL_UNSIGNED_INT_VEC2 to 4
        return vector(0x8DC6);
    if (isBetween(0x8B5A, 0x8B5C)) // GL_FLOAT_MAT2 to 4
        return {static_cast<int>(type - 0x8B5A) + 2, static_cast<int>(type - 0x8B5A) + 2};
    if (isBetween(0x8B65, 0x8B6A)) { // GL_FLOAT_MAT2x3 to GL_FLOAT_MAT4x3
        static constexpr std::array<Type, 6> matrices{Type{2, 3}, {2, 4}, {3, 2}, {3, 4}, {4, 2}, {4, 3}};
        return matrices[type - 0x8B65];
    }
    if (isBetween(0x904C, 0x906B)) // GL_IMAGE_1D to the last of images
        return {0, 0, false, true, false};
    if (type == 0x92DB) // GL_UNSIGNED_INT_ATOMIC_COUNTER
        return {0, 0, false, false, true};
    const bool isNumber = type == 0x1404 || type == 0x1405 || type == 0x1406 || type == 0x8B56;
    return isNumber ? Type{} : Type{0, 0, true, false, false};
}

/// What variables take together.
struct Use {
    std::array<std::int64_t, 5> columns{}; ///< By their components.
    std::int64_t components = 0;
    std::int64_t samplers = 0;
    std::int64_t images = 0;
    std::int64_t counters = 0;

    void add(const Type& type, std::int64_t count)
    {
        columns[static_cast<std::size_t>(type.components)] += type.columns * count;
        components += count * type.columns * type.components;
        samplers += type.isSampler ? count : 0;
        images += type.isImage ? count : 0;
        counters += type.isCounter ? count : 0;
    }

    /// Vectors of four, packed as well as they can be.
    std::int64_t vectors() const
    {
        const std::int64_t pairs = (columns[2] + 1) / 2;
        const std::int64_t gaps = columns[3] + (columns[2] % 2) * 2;
        const std::int64_t singles = std::max<std::int64_t>(columns[1] - gaps, 0);
        return columns[4] + columns[3] + pairs + (singles + 3) / 4;
    }
};

/// Asks the host about a program that it has linked.
class Program {
public:
    Program(const Context& context, GLuint program)
        : m_host(*context.host)
        , m_program(program)
    {
    }

    GLuint count(GLenum interface) const
    {
        GLint value = 0;
        m_host.function<void (*)(GLuint, GLenum, GLenum, GLint*)>(Fn::glGetProgramInterfaceiv)(
            m_program, interface, activeResources, &value);
        return static_cast<GLuint>(std::max(value, 0));
    }
    template <typename... Properties> auto get(GLenum interface, GLuint index, Properties... properties) const
    {
        const std::array<GLenum, sizeof...(properties)> names{properties...};
        std::array<GLint, sizeof...(properties)> values{};
        m_host.function<decltype(&generated::glGetProgramResourceiv)>(Fn::glGetProgramResourceiv)(m_program,
            interface, index, static_cast<GLsizei>(names.size()), names.data(),
            static_cast<GLsizei>(values.size()), nullptr, values.data());
        return values;
    }
    /// The language's own variables take nothing of what the limits are about.
    bool isBuiltIn(GLenum interface, GLuint index) const
    {
        std::array<GLchar, 4> start{};
        m_host.function<decltype(&generated::glGetProgramResourceName)>(Fn::glGetProgramResourceName)(
            m_program, interface, index, static_cast<GLsizei>(start.size()), nullptr, start.data());
        return std::string_view(start.data()).starts_with("gl_");
    }
    Use use(GLenum interface, GLenum isReferenced) const
    {
        Use use;
        for (GLuint i = 0; i < count(interface); ++i) {
            if (isBuiltIn(interface, i))
                continue;
            const bool isOfUniforms = interface == uniform;
            const auto [type, size, block, referenced] = get(interface, i, resourceType, resourceArraySize,
                isOfUniforms ? resourceBlockIndex : resourceArraySize,
                isReferenced == gl::none ? resourceArraySize : isReferenced);
            const bool isInBlock = isOfUniforms && block >= 0;
            if (!isInBlock && (isReferenced == gl::none || referenced != 0))
                use.add(typeOf(static_cast<GLenum>(type)), std::max(size, 1));
        }
        return use;
    }
    std::int64_t blocks(GLenum interface, GLenum isReferenced) const
    {
        std::int64_t blocks = 0;
        for (GLuint i = 0; i < count(interface); ++i)
            blocks += isReferenced == gl::none || get(interface, i, isReferenced)[0] != 0 ? 1 : 0;
        return blocks;
    }

private:
    Host& m_host;
    GLuint m_program;
};

/// Compares with the limits of a device, and keeps what is said first.
class Limits {
public:
    explicit Limits(const DeviceGate& gate)
        : m_gate(gate)
    {
    }

    void check(std::string_view user, std::int64_t used, std::string_view what, GLenum limit)
    {
        const std::int64_t most =
            limit == gl::none ? std::numeric_limits<std::int64_t>::max() : capability(m_gate.api(), limit);
        if (used > most)
            compare(user, used, what, limit, most);
    }
    void compare(
        std::string_view user, std::int64_t used, std::string_view what, GLenum limit, std::int64_t most)
    {
        if (used > most && m_refusal.empty())
            m_refusal = std::string(user) + " uses " + std::to_string(used) + ' ' + std::string(what) + "; "
                + ::gl::enumerantName(static_cast<std::int32_t>(limit)) + " of " + m_gate.table().name
                + " is " + std::to_string(most);
    }
    const DeviceGate& gate() const { return m_gate; }
    std::string take() { return std::move(m_refusal); }

private:
    const DeviceGate& m_gate;
    std::string m_refusal;
};

void checkStage(Limits& limits, const Program& program, const Stage& stage)
{
    const Use use = program.use(uniform, stage.isReferenced);
    limits.check(stage.name, use.vectors(), "vectors of uniforms", stage.vectors);
    limits.check(stage.name, use.components, "components of uniforms", stage.components);
    limits.check(stage.name, use.samplers, "samplers", stage.samplers);
    limits.check(stage.name, use.images, "images", stage.images);
    limits.check(stage.name, use.counters, "atomic counters", stage.counters);
    limits.check(
        stage.name, program.blocks(uniformBlock, stage.isReferenced), "uniform blocks", stage.blocks);
    limits.check(stage.name, program.blocks(shaderStorageBlock, stage.isReferenced), "storage blocks",
        stage.storageBlocks);
}

void checkBlockSizes(Limits& limits, const Program& program)
{
    constexpr GLenum maxUniformBlockSize = 0x8A30;
    constexpr GLenum maxStorageBlockSize = 0x90DE;
    for (const auto& [interface, limit] :
        {std::pair(uniformBlock, maxUniformBlockSize), std::pair(shaderStorageBlock, maxStorageBlockSize)}) {
        for (GLuint i = 0; i < program.count(interface); ++i)
            limits.check("a block", program.get(interface, i, resourceDataSize)[0], "bytes", limit);
    }
}

/// The attributes of a vertex shader, where the program has one.
void checkInputs(Limits& limits, const Program& program)
{
    constexpr GLenum maxVertexAttribs = 0x8869;
    const Use use = program.use(programInput, gl::none);
    std::int64_t attributes = 0;
    for (const std::int64_t columns : use.columns)
        attributes += columns;
    limits.check("the vertex shader", attributes, "attributes", maxVertexAttribs);
}

void checkOutputs(Limits& limits, const Program& program)
{
    constexpr GLenum maxDrawBuffers = 0x8824;
    std::int64_t outputs = 0;
    for (GLuint i = 0; i < program.count(programOutput); ++i) {
        const auto [location, size] = program.get(programOutput, i, resourceLocation, resourceArraySize);
        if (location >= 0)
            outputs = std::max(outputs, std::int64_t{location} + std::max(size, 1));
    }
    limits.check("the fragment shader", outputs, "draw buffers", maxDrawBuffers);
}

void checkWorkGroup(Limits& limits, const Context& context, GLuint program)
{
    constexpr GLenum computeWorkGroupSize = 0x8267;
    constexpr GLenum maxInvocations = 0x90EB;
    std::array<GLint, 3> size{};
    context.host->function<void (*)(GLuint, GLenum, GLint*)>(Fn::glGetProgramiv)(
        program, computeWorkGroupSize, size.data());
    limits.check("a work group", std::int64_t{size[0]} * size[1] * size[2], "invocations", maxInvocations);
    const auto most = limits.gate().api().capabilities.find(gl::maxComputeWorkGroupSize);
    for (std::size_t i = 0;
         most != limits.gate().api().capabilities.end() && i < 3 && i < most->second.size(); ++i)
        limits.compare("a work group", size[i], "invocations in a row", gl::maxComputeWorkGroupSize,
            convert<std::int64_t>(most->second[i]));
}

/// What a fragment shader takes of the vertex shader only shows where it is linked alone.
void checkVaryings(Limits& limits, const Context& context, GLuint fragmentShader)
{
    constexpr GLenum programSeparable = 0x8258;
    constexpr GLenum maxVaryingVectors = 0x8DFC;
    constexpr GLenum maxVaryingComponents = 0x8B4B;
    Host& host = *context.host;
    const GLuint alone = host.function<GLuint (*)()>(Fn::glCreateProgram)();
    host.function<void (*)(GLuint, GLenum, GLint)>(Fn::glProgramParameteri)(alone, programSeparable, 1);
    host.function<void (*)(GLuint, GLuint)>(Fn::glAttachShader)(alone, fragmentShader);
    host.function<void (*)(GLuint)>(Fn::glLinkProgram)(alone);
    GLint isLinked = 0;
    host.function<void (*)(GLuint, GLenum, GLint*)>(Fn::glGetProgramiv)(alone, gl::linkStatus, &isLinked);
    if (isLinked != 0) {
        const Use use = Program(context, alone).use(programInput, gl::none);
        limits.check("the fragment shader", use.vectors(), "vectors of varyings", maxVaryingVectors);
        limits.check("the fragment shader", use.components, "components of varyings", maxVaryingComponents);
    }
    host.function<void (*)(GLuint)>(Fn::glDeleteProgram)(alone);
}

/// The shaders of a program by their types; 0 for those that it has not.
struct Shaders {
    GLuint vertex = 0;
    GLuint fragment = 0;
    GLuint compute = 0;
    bool hasOthers = false;
};

Shaders shadersOf(const Context& context, GLuint program)
{
    std::array<GLuint, 8> attached{};
    GLsizei count = 0;
    context.host->function<decltype(&generated::glGetAttachedShaders)>(Fn::glGetAttachedShaders)(
        program, static_cast<GLsizei>(attached.size()), &count, attached.data());
    Shaders shaders;
    for (std::size_t i = 0; i < static_cast<std::size_t>(std::max(count, 0)); ++i) {
        GLint type = 0;
        context.host->function<void (*)(GLuint, GLenum, GLint*)>(Fn::glGetShaderiv)(
            attached[i], gl::shaderType, &type);
        if (type == gl::vertexShader)
            shaders.vertex = attached[i];
        else if (type == gl::fragmentShader)
            shaders.fragment = attached[i];
        else if (type == gl::computeShader)
            shaders.compute = attached[i];
        else
            shaders.hasOthers = true;
    }
    return shaders;
}

} // namespace

std::string linkRefusal(const Context& context, GLuint program)
{
    // Older hosts do not tell which stage uses what.
    if (context.esVersion < 31)
        return {};
    const Shaders shaders = shadersOf(context, program);
    const Program linked(context, program);
    Limits limits(*context.gate);
    for (const Stage& stage : stages)
        checkStage(limits, linked, stage);
    checkStage(limits, linked, allStages);
    checkBlockSizes(limits, linked);
    if (shaders.vertex != 0)
        checkInputs(limits, linked);
    if (shaders.fragment != 0)
        checkOutputs(limits, linked);
    if (shaders.compute != 0)
        checkWorkGroup(limits, context, program);
    if (shaders.vertex != 0 && shaders.fragment != 0 && !shaders.hasOthers)
        checkVaryings(limits, context, shaders.fragment);
    return limits.take();
}

} // namespace layer
