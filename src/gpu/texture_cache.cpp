// SPDX-License-Identifier: MIT
#include "gpu/texture_cache.h"

#include <algorithm>

std::vector<gl_texture_resource*>& cachedTextures = *new std::vector<gl_texture_resource*>;

gl_texture_resource* find_texture(int height, int width, int format) {
    delete_dropped_textures();
    const int wanted = gl_texture_resource::get_internal_format(format);
    const auto hit = std::find_if(cachedTextures.begin(), cachedTextures.end(),
                                  [&](const gl_texture_resource* tex) {
                                      return tex->height() == height && tex->width() == width &&
                                             tex->internal_format() == wanted;
                                  });
    if (hit == cachedTextures.end()) {
        clear_texture_cache();
        return nullptr;
    }
    gl_texture_resource* tex = *hit;
    cachedTextures.erase(hit);
    return tex;
}

bool alloc_texture(gl_texture_resource*& tex, int height, int width, int format) {
    if (tex && tex->height() == height && tex->width() == width) return false;
    if (tex) tex->release();
    tex = find_texture(height, width, format);
    if (!tex) {
        tex = new gl_texture_resource(height, width, format, nullptr);
        tex->addref();
    }
    return true;
}

bool alloc_texture(object_ref<gl_texture_resource>& tex, int height, int width, int format) {
    if (tex && tex->height() == height && tex->width() == width) return false;
    tex = new gl_texture_resource(height, width, format, nullptr);
    return true;
}

bool release_texture(gl_texture_resource*& tex) {
    if (tex) cachedTextures.push_back(tex);
    tex = nullptr;
    return true;
}

void clear_texture_cache() {
    for (gl_texture_resource* tex : cachedTextures)
        tex->release();
    cachedTextures.clear();
}
