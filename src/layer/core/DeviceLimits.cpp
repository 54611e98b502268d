// What the limits of a device say about arguments; limited_functions.txt says about which.
#include "Checks.h"
#include "DeviceGate.h"
#include "GlEnumerants.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <sstream>

namespace layer {

namespace {

constexpr std::int64_t unlimited = std::numeric_limits<std::int64_t>::max();

/// The arguments of a call under the places of a row.
class Call {
public:
    Call(const LimitRow& row, std::initializer_list<Argument> arguments)
        : m_row(row)
        , m_arguments(arguments.begin())
    {
    }

    std::int64_t value(int further = 0) const { return at(m_row.places.value + further); }
    GLenum target() const { return static_cast<GLenum>(at(m_row.places.target)); }
    GLenum internalFormat() const { return static_cast<GLenum>(at(m_row.places.internalFormat)); }
    std::int64_t width() const { return at(m_row.places.width); }
    std::int64_t height() const { return at(m_row.places.height); }
    std::int64_t depth() const { return at(m_row.places.depth); }
    std::int64_t offset() const { return at(m_row.places.offset); }
    GLenum name() const { return static_cast<GLenum>(at(m_row.places.name)); }
    double floatValue() const { return std::bit_cast<double>(value()); }
    /// What a pointer points to; 0 for null.
    template <typename Number> Number pointedValue() const
    {
        // Arguments travel as bits. NOLINTNEXTLINE(performance-no-int-to-ptr)
        const auto* numbers = reinterpret_cast<const Number*>(static_cast<std::uintptr_t>(value()));
        return numbers ? *numbers : Number{};
    }
    std::int64_t level() const { return at(m_row.places.level); }

private:
    /// 0 for what the function does not take.
    std::int64_t at(int place) const
    {
        return place < 0 ? 0 : static_cast<std::int64_t>(m_arguments[place].bits);
    }

    const LimitRow& m_row;
    const Argument* m_arguments;
};

std::string nameOf(GLenum enumerant)
{
    return ::gl::enumerantName(static_cast<std::int32_t>(enumerant));
}

Refusal beyond(const DeviceGate& gate, GLenum code, std::int64_t value, GLenum limit, std::int64_t limitValue)
{
    return {code,
        std::to_string(value) + " is too much for " + gate.table().name + ", where " + nameOf(limit) + " is "
            + std::to_string(limitValue)};
}

/// The same for what counts from 0.
Refusal beyondIndex(
    const DeviceGate& gate, GLenum code, std::int64_t index, GLenum limit, std::int64_t limitValue)
{
    Refusal refusal = beyond(gate, code, index, limit, limitValue);
    refusal.why.insert(0, "the index ");
    return refusal;
}

/// Units, lights and attachments count from a base; what is further away is another enumerant.
Refusal checkUnit(const DeviceGate& gate, const LimitRow& row, std::int64_t limit, std::int64_t value)
{
    constexpr std::int64_t textures = 256;
    constexpr std::int64_t others = 32;
    const std::int64_t unit = value - row.base;
    if (unit < limit || unit >= (row.base == gl::texture0 ? textures : others))
        return {};
    const bool isAttachment = row.check == LimitRow::Check::attachment;
    return beyondIndex(gate, isAttachment ? gl::invalidOperation : gl::invalidEnum, unit, row.limit, limit);
}

struct ImageLimits {
    GLenum size; ///< Of width and height.
    GLenum depth; ///< Of depth or layers; gl::none for flat images.
};

ImageLimits imageLimits(GLenum target)
{
    const bool isFace = target >= gl::textureCubeMapPositiveX && target < gl::textureCubeMapPositiveX + 6;
    if (isFace || target == gl::textureCubeMap)
        return {gl::maxCubeMapTextureSize, gl::none};
    switch (target) {
    case gl::texture3D:
        return {gl::max3DTextureSize, gl::max3DTextureSize};
    case gl::texture2DArray:
    case gl::texture2DMultisampleArray:
        return {gl::maxTextureSize, gl::maxArrayTextureLayers};
    case gl::textureCubeMapArray:
        return {gl::maxCubeMapTextureSize, gl::maxArrayTextureLayers};
    default:
        return {gl::maxTextureSize, gl::none};
    }
}

Refusal checkImage(const DeviceGate& gate, const Call& call)
{
    const ImageLimits limits = imageLimits(call.target());
    const std::int64_t level = std::clamp<std::int64_t>(call.level(), 0, 31);
    const auto check = [&](std::int64_t value, GLenum limit, std::int64_t shift) -> Refusal {
        const std::int64_t largest = capability(gate.api(), limit);
        if (largest == unlimited || value <= std::max<std::int64_t>(largest >> shift, 1))
            return {};
        return beyond(gate, gl::invalidValue, value, limit, largest);
    };
    Refusal refusal = check(std::max(call.width(), call.height()), limits.size, level);
    if (refusal.code == gl::none && limits.depth != gl::none)
        refusal = check(call.depth(), limits.depth, limits.depth == gl::max3DTextureSize ? level : 0);
    return refusal;
}

Refusal checkCompressed(const DeviceGate& gate, GLenum format)
{
    if (!gate.isCompressed(format))
        return {};
    std::string name = nameOf(format);
    if (!gate.hasCompressed(format))
        return {gl::invalidEnum, name + " is none of the compressed formats of " + gate.table().name};
    if (!gate.hostHasCompressed(format))
        return {gl::invalidEnum,
            gate.table().name + " has the format " + name + ", but this machine cannot decode it"};
    return {};
}

Refusal checkSamples(const DeviceGate& gate, const LimitRow& row, std::int64_t limit, const Call& call)
{
    const auto counts = gate.api().sampleCounts.find(call.internalFormat());
    const GLenum code = gate.api().version >= 30 ? gl::invalidOperation : gl::invalidValue;
    if (counts == gate.api().sampleCounts.end())
        return call.value() <= limit ? Refusal{} : beyond(gate, code, call.value(), row.limit, limit);
    std::int64_t most = 0;
    for (const std::int32_t count : counts->second)
        most = std::max<std::int64_t>(most, count);
    if (call.value() <= most)
        return {};
    const std::string samples =
        most == 0 ? " has no samples on " : " has " + std::to_string(most) + " samples at most on ";
    return {code, nameOf(call.internalFormat()) + samples + gate.table().name};
}

Refusal checkGroups(const DeviceGate& gate, const LimitRow& row, const Call& call)
{
    const auto limits = gate.api().capabilities.find(row.limit);
    if (limits == gate.api().capabilities.end())
        return {};
    const int count = static_cast<int>(std::min<std::size_t>(limits->second.size(), 3));
    for (int i = 0; i < count; ++i) {
        const auto limit = convert<std::int64_t>(limits->second[static_cast<std::size_t>(i)]);
        if (call.value(i) > limit)
            return beyond(gate, gl::invalidValue, call.value(i), row.limit, limit);
    }
    return {};
}

struct BindingLimits {
    GLenum target;
    GLenum count;
    GLenum alignment; ///< Of offsets; gl::none where they have none.
};
constexpr BindingLimits bindings[] = {
    {0x8A11, 0x8A2F, 0x8A34}, // GL_UNIFORM_BUFFER
    {0x8C8E, 0x8C8B, gl::none}, // GL_TRANSFORM_FEEDBACK_BUFFER
    {0x90D2, 0x90DD, 0x90DF}, // GL_SHADER_STORAGE_BUFFER
    {0x92C0, 0x92DC, gl::none}, // GL_ATOMIC_COUNTER_BUFFER
};

Refusal checkBinding(const DeviceGate& gate, const Call& call)
{
    const auto* found = std::ranges::find(bindings, call.target(), &BindingLimits::target);
    if (found == std::end(bindings))
        return {};
    const std::int64_t count = capability(gate.api(), found->count);
    if (call.value() >= count)
        return beyondIndex(gate, gl::invalidValue, call.value(), found->count, count);
    const std::int64_t alignment = capability(gate.api(), found->alignment, 1);
    if (alignment > 0 && call.offset() % alignment != 0)
        return beyond(gate, gl::invalidValue, call.offset(), found->alignment, alignment);
    return {};
}

/// A parameter of textures and samplers that is set to an enumerant rather than a number.
bool isEnumerant(GLenum name)
{
    const bool isFilterOrWrap =
        name >= 0x2800 && name <= 0x2803; // GL_TEXTURE_MAG_FILTER to GL_TEXTURE_WRAP_T
    const bool isWrapR = name == 0x8072; // GL_TEXTURE_WRAP_R
    const bool isCompare =
        name == 0x884C || name == 0x884D; // GL_TEXTURE_COMPARE_MODE, GL_TEXTURE_COMPARE_FUNC
    const bool isSwizzle = name >= 0x8E42 && name <= 0x8E45; // GL_TEXTURE_SWIZZLE_R to GL_TEXTURE_SWIZZLE_A
    return isFilterOrWrap || isWrapR || isCompare || isSwizzle;
}

/// The value as an enumerant; gl::none for a number that is none.
GLenum enumerantOf(double value)
{
    return value > 0 && value < 0x10000 ? static_cast<GLenum>(value) : gl::none;
}

Refusal checkParameter(const DeviceGate& gate, LimitRow::Check check, const Call& call)
{
    using Check = LimitRow::Check;
    if (!isEnumerant(call.name()))
        return {};
    auto value = static_cast<GLenum>(call.value());
    if (check == Check::parameterFloat)
        value = enumerantOf(call.floatValue());
    else if (check == Check::parameterInts)
        value = static_cast<GLenum>(call.pointedValue<GLint>());
    else if (check == Check::parameterFloats)
        value = enumerantOf(call.pointedValue<GLfloat>());
    if (!gate.blocks(value))
        return {};
    return {gl::invalidEnum,
        nameOf(value) + " is not available on " + gate.table().name + ": "
            + gate.availability().needOf(value)};
}

Refusal checkNeeds(const DeviceGate& gate, const LimitRow& row)
{
    std::string needs = "OpenGL ES 3.0";
    std::istringstream extensions(row.extensions);
    for (std::string name; extensions >> name;)
        needs += " or " + name;
    return {gl::invalidEnum,
        nameOf(row.limit) + " is not available here on " + gate.table().name + ": needs " + needs};
}

} // namespace

Refusal checkLimit(const DeviceGate& gate, std::size_t row, std::initializer_list<Argument> arguments)
{
    using Check = LimitRow::Check;
    const LimitRow& limited = limitRow(row);
    const std::int64_t limit = gate.limitOf(row);
    const Call call(limited, arguments);
    switch (limited.check) {
    case Check::below:
        return call.value() < limit ? Refusal{}
                                    : beyondIndex(gate, gl::invalidValue, call.value(), limited.limit, limit);
    case Check::atMost:
        return call.value() <= limit ? Refusal{}
                                     : beyond(gate, gl::invalidValue, call.value(), limited.limit, limit);
    case Check::unit:
    case Check::attachment:
        return checkUnit(gate, limited, limit, call.value());
    case Check::image:
        return checkImage(gate, call);
    case Check::compressed:
        return checkCompressed(gate, static_cast<GLenum>(call.value()));
    case Check::samples:
        return checkSamples(gate, limited, limit, call);
    case Check::groups:
        return checkGroups(gate, limited, call);
    case Check::binding:
        return checkBinding(gate, call);
    case Check::parameter:
    case Check::parameterFloat:
    case Check::parameterInts:
    case Check::parameterFloats:
        return checkParameter(gate, limited.check, call);
    case Check::needs:
        return limit != 0 || static_cast<GLenum>(call.value()) != limited.limit ? Refusal{}
                                                                                : checkNeeds(gate, limited);
    }
    return {};
}

namespace hooks {

void glPushMatrix()
{
    Context& context = currentContext();
    struct Stack {
        GLenum mode, depth, limit;
    };
    static constexpr Stack stacks[] = {
        {0x1700, 0x0BA3, 0x0D36}, {0x1701, 0x0BA4, 0x0D38}, {0x1702, 0x0BA5, 0x0D39}};
    for (const Stack& stack : stacks) {
        if (!context.gate || context.gate->blocks(Fn::glPushMatrix))
            break;
        const auto get = context.host->function<void (*)(GLenum, GLint*)>(Fn::glGetIntegerv);
        GLint mode = 0, depth = 0;
        get(gl::matrixMode, &mode);
        if (static_cast<GLenum>(mode) != stack.mode)
            continue;
        get(stack.depth, &depth);
        const std::int64_t limit = capability(context.gate->api(), stack.limit);
        if (depth < limit)
            continue;
        refuseGl(context, Fn::glPushMatrix, {}, gl::stackOverflow,
            beyond(*context.gate, gl::stackOverflow, depth + 1, stack.limit, limit).why);
        return;
    }
    generated::glPushMatrix();
}

/// Sizes above the limit are no error.
void glViewport(GLint x, GLint y, GLsizei width, GLsizei height)
{
    const Context& context = currentContext();
    if (context.gate) {
        const auto& capabilities = context.gate->api().capabilities;
        const auto largest = capabilities.find(gl::maxViewportDims);
        if (largest != capabilities.end() && largest->second.size() >= 2) {
            width = std::min(width, convert<GLsizei>(largest->second[0]));
            height = std::min(height, convert<GLsizei>(largest->second[1]));
        }
    }
    generated::glViewport(x, y, width, height);
}

} // namespace hooks

} // namespace layer
