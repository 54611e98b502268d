// The functions that ask for state: a device answers for what it says of itself, the layer for debug output,
// and the driver for the rest.
#include "DebugState.h"
#include "DeviceGate.h"
#include "DeviceQueries.h"

#include <optional>
#include <type_traits>

namespace layer::hooks {

namespace {

/// A number as a query of that type returns it.
template <typename Value> Value valueOf(const device::Number& number)
{
    return convert<Value>(number);
}

struct Truth {
    GLboolean value;
};
template <> Truth valueOf<Truth>(const device::Number& number)
{
    return {std::visit([](auto value) { return value != 0; }, number) ? GLboolean{1} : GLboolean{0}};
}

struct Fixed {
    GLfixed value;
};
template <> Fixed valueOf<Fixed>(const device::Number& number)
{
    constexpr double one = 65536;
    const double value = std::visit([](auto plain) { return static_cast<double>(plain); }, number);
    return {convert<GLfixed>(device::Number(value * one))};
}

/// Writes what was found, in the form that a wrapping type gives it. False where there is nothing.
template <typename Form, typename Value> bool put(const std::vector<device::Number>& numbers, Value* data)
{
    if (numbers.empty() || !data)
        return false;
    for (const device::Number& number : numbers) {
        if constexpr (std::is_same_v<Form, Value>)
            *data++ = valueOf<Form>(number);
        else
            *data++ = valueOf<Form>(number).value;
    }
    return true;
}

/// Answers a query of what the layer keeps or a device says.
template <typename Form, typename Value> bool answer(GLenum name, Value* data)
{
    const Context& context = currentContext();
    if (context.usesDebugOutput && !(context.gate && context.gate->blocks(name))) {
        if (const std::optional<std::int64_t> state = context.debug->state(name))
            return put<Form>({device::Number(*state)}, data);
    }
    return put<Form>(deviceState(context, name), data);
}

bool blocks(Fn function)
{
    const DeviceGate* gate = currentContext().gate;
    return gate && gate->blocks(function);
}

} // namespace

void glGetBooleanv(GLenum name, GLboolean* data)
{
    if (!answer<Truth>(name, data))
        generated::glGetBooleanv(name, data);
}

void glGetFloatv(GLenum name, GLfloat* data)
{
    if (!answer<GLfloat>(name, data))
        generated::glGetFloatv(name, data);
}

void glGetIntegerv(GLenum name, GLint* data)
{
    if (!answer<GLint>(name, data))
        generated::glGetIntegerv(name, data);
}

void glGetInteger64v(GLenum name, GLint64* data)
{
    if (blocks(Fn::glGetInteger64v) || !answer<GLint64>(name, data))
        generated::glGetInteger64v(name, data);
}

void glGetInteger64vAPPLE(GLenum name, GLint64* data)
{
    if (blocks(Fn::glGetInteger64vAPPLE) || !answer<GLint64>(name, data))
        generated::glGetInteger64vAPPLE(name, data);
}

void glGetInteger64vEXT(GLenum name, GLint64* data)
{
    if (blocks(Fn::glGetInteger64vEXT) || !answer<GLint64>(name, data))
        generated::glGetInteger64vEXT(name, data);
}

void glGetFixedv(GLenum name, GLfixed* data)
{
    if (blocks(Fn::glGetFixedv) || !answer<Fixed>(name, data))
        generated::glGetFixedv(name, data);
}

void glGetFixedvOES(GLenum name, GLfixed* data)
{
    if (blocks(Fn::glGetFixedvOES) || !answer<Fixed>(name, data))
        generated::glGetFixedvOES(name, data);
}

void glGetBooleani_v(GLenum name, GLuint index, GLboolean* data)
{
    if (blocks(Fn::glGetBooleani_v) || !put<Truth>(deviceState(currentContext(), name, index), data))
        generated::glGetBooleani_v(name, index, data);
}

void glGetIntegeri_v(GLenum name, GLuint index, GLint* data)
{
    if (blocks(Fn::glGetIntegeri_v) || !put<GLint>(deviceState(currentContext(), name, index), data))
        generated::glGetIntegeri_v(name, index, data);
}

void glGetInteger64i_v(GLenum name, GLuint index, GLint64* data)
{
    if (blocks(Fn::glGetInteger64i_v) || !put<GLint64>(deviceState(currentContext(), name, index), data))
        generated::glGetInteger64i_v(name, index, data);
}

} // namespace layer::hooks
