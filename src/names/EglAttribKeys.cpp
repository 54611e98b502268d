#include "EglEnumerants.h"
#include "KeyIndex.h"
#include "KeyTables.h"

#include <map>
#include <stdexcept>

namespace {

using enum KeyKind;

EGLAttribKey row(const char* name, std::deque<std::string> xmlPath, KeyKind kind)
{
    const std::optional<std::int32_t> value = egl::enumerantValue(name);
    if (!value)
        throw std::logic_error(std::string("unknown EGL attribute ") + name);
    return EGLAttribKey{*value, std::move(xmlPath), {name}, kind != KeyKind::Mask, kind};
}

/// A mask by its meaning, yet the editor treats it as one value.
EGLAttribKey conformant()
{
    EGLAttribKey key = row("EGL_CONFORMANT", {"conformant"}, Mask);
    key.single = true;
    return key;
}

std::vector<EGLAttribKey> makeRows()
{
    return {
        row("EGL_ALPHA_SIZE", {"alpha_size"}, Count),
        row("EGL_RED_SIZE", {"red_size"}, Count),
        row("EGL_GREEN_SIZE", {"green_size"}, Count),
        row("EGL_BLUE_SIZE", {"blue_size"}, Count),
        row("EGL_DEPTH_SIZE", {"depth_size"}, Count),
        row("EGL_STENCIL_SIZE", {"stencil_size"}, Count),
        row("EGL_BUFFER_SIZE", {"buffer_size"}, Count),
        row("EGL_BIND_TO_TEXTURE_RGB", {"bind_to_texture_rgb"}, Boolean),
        row("EGL_BIND_TO_TEXTURE_RGBA", {"bind_to_texture_rgba"}, Boolean),
        row("EGL_CONFIG_CAVEAT", {"config_caveat"}, Enumerant),
        row("EGL_LEVEL", {"level"}, Count),
        row("EGL_MAX_PBUFFER_WIDTH", {"max_pbuffer", "width"}, Size),
        row("EGL_MAX_PBUFFER_HEIGHT", {"max_pbuffer", "height"}, Size),
        row("EGL_MAX_PBUFFER_PIXELS", {"max_pbuffer", "pixels"}, Size),
        row("EGL_MAX_SWAP_INTERVAL", {"swap_interval", "max"}, Count),
        row("EGL_MIN_SWAP_INTERVAL", {"swap_interval", "min"}, Count),
        row("EGL_NATIVE_RENDERABLE", {"native_renderable"}, Boolean),
        // A number of the window system, or EGL_NONE.
        row("EGL_NATIVE_VISUAL_TYPE", {"native_visual_type"}, Enumerant),
        row("EGL_RENDERABLE_TYPE", {"renderable_type"}, Mask),
        conformant(),
        row("EGL_SAMPLE_BUFFERS", {"sample_buffers"}, Count),
        row("EGL_SAMPLES", {"samples"}, Count),
        row("EGL_SURFACE_TYPE", {"surface_type"}, Mask),
        row("EGL_TRANSPARENT_TYPE", {"transparency", "type"}, Enumerant),
        row("EGL_TRANSPARENT_BLUE", {"transparency", "blue"}, Count),
        row("EGL_TRANSPARENT_GREEN", {"transparency", "green"}, Count),
        row("EGL_TRANSPARENT_RED", {"transparency", "red"}, Count),
    };
}

struct Table {
    Table()
        : rows(makeRows())
    {
        for (const EGLAttribKey& key : rows) {
            byName.emplace(key.displayName, &key);
            byPath.emplace(key.xmlPath, &key);
            byValue.emplace(key.value, &key);
        }
    }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    const std::vector<EGLAttribKey> rows;
    std::map<EGLAttribKey::DisplayName, const EGLAttribKey*> byName;
    std::map<std::deque<std::string>, const EGLAttribKey*> byPath;
    std::map<std::int32_t, const EGLAttribKey*> byValue;
};

const Table& table()
{
    static const Table instance;
    return instance;
}

} // namespace

bool findEGLAttribKey(const EGLAttribKey::DisplayName& name, EGLAttribKey* key)
{
    return copyRow(table().byName, name, key);
}

bool findEGLAttribKey(const std::deque<std::string>& xmlPath, EGLAttribKey* key)
{
    return copyRow(table().byPath, xmlPath, key);
}

bool findEGLAttribKey(int value, EGLAttribKey* key)
{
    return copyRow(table().byValue, value, key);
}

void visitEGLAttribKeys(const std::function<void(const EGLAttribKey&)>& visit)
{
    for (const EGLAttribKey& key : table().rows)
        visit(key);
}
