#include "EglEnumerants.h"
#include "KeyTables.h"

#include <map>
#include <stdexcept>

namespace {

constexpr bool single = true;
constexpr bool mask = false;

EGLAttribKey row(const char* name, std::deque<std::string> xmlPath, bool isSingle)
{
    const std::optional<std::int32_t> value = egl::enumerantValue(name);
    if (!value)
        throw std::logic_error(std::string("unknown EGL attribute ") + name);
    return EGLAttribKey{*value, std::move(xmlPath), {name}, isSingle};
}

std::vector<EGLAttribKey> makeRows()
{
    return {
        row("EGL_ALPHA_SIZE", {"alpha_size"}, single),
        row("EGL_RED_SIZE", {"red_size"}, single),
        row("EGL_GREEN_SIZE", {"green_size"}, single),
        row("EGL_BLUE_SIZE", {"blue_size"}, single),
        row("EGL_DEPTH_SIZE", {"depth_size"}, single),
        row("EGL_STENCIL_SIZE", {"stencil_size"}, single),
        row("EGL_BUFFER_SIZE", {"buffer_size"}, single),
        row("EGL_BIND_TO_TEXTURE_RGB", {"bind_to_texture_rgb"}, single),
        row("EGL_BIND_TO_TEXTURE_RGBA", {"bind_to_texture_rgba"}, single),
        row("EGL_CONFIG_CAVEAT", {"config_caveat"}, single),
        row("EGL_LEVEL", {"level"}, single),
        row("EGL_MAX_PBUFFER_WIDTH", {"max_pbuffer", "width"}, single),
        row("EGL_MAX_PBUFFER_HEIGHT", {"max_pbuffer", "height"}, single),
        row("EGL_MAX_PBUFFER_PIXELS", {"max_pbuffer", "pixels"}, single),
        row("EGL_MAX_SWAP_INTERVAL", {"swap_interval", "max"}, single),
        row("EGL_MIN_SWAP_INTERVAL", {"swap_interval", "min"}, single),
        row("EGL_NATIVE_RENDERABLE", {"native_renderable"}, single),
        row("EGL_NATIVE_VISUAL_TYPE", {"native_visual_type"}, single),
        row("EGL_RENDERABLE_TYPE", {"renderable_type"}, mask),
        // A mask by its meaning, yet the editor treats it as one value.
        row("EGL_CONFORMANT", {"conformant"}, single),
        row("EGL_SAMPLE_BUFFERS", {"sample_buffers"}, single),
        row("EGL_SAMPLES", {"samples"}, single),
        row("EGL_SURFACE_TYPE", {"surface_type"}, mask),
        row("EGL_TRANSPARENT_TYPE", {"transparency", "type"}, single),
        row("EGL_TRANSPARENT_BLUE", {"transparency", "blue"}, single),
        row("EGL_TRANSPARENT_GREEN", {"transparency", "green"}, single),
        row("EGL_TRANSPARENT_RED", {"transparency", "red"}, single),
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

template <typename Index, typename Sought>
bool find(const Index& index, const Sought& sought, EGLAttribKey* key)
{
    const auto found = index.find(sought);
    if (found == index.end())
        return false;
    *key = *found->second;
    return true;
}

} // namespace

bool findEGLAttribKey(const EGLAttribKey::DisplayName& name, EGLAttribKey* key)
{
    return find(table().byName, name, key);
}

bool findEGLAttribKey(const std::deque<std::string>& xmlPath, EGLAttribKey* key)
{
    return find(table().byPath, xmlPath, key);
}

bool findEGLAttribKey(int value, EGLAttribKey* key)
{
    return find(table().byValue, value, key);
}

void visitEGLAttribKeys(const std::function<void(const EGLAttribKey&)>& visit)
{
    for (const EGLAttribKey& key : table().rows)
        visit(key);
}
