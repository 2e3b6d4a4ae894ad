// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_texture.h"

#include <vector>

/// Textures that passes gave back, each held with one reference, oldest first. [main]
extern std::vector<gl_texture_resource*>& cachedTextures;

/// Takes a texture of this size and format (0: the default) out of the cache; the caller inherits
/// its reference. Null when there is none: then the whole cache is emptied, so that it never holds
/// more than the sizes in use. [main]
gl_texture_resource* find_texture(int height, int width, int format);

/// Makes `tex` a texture of this size, from the cache where possible. Returns whether it was
/// replaced; its contents are undefined then. A texture of the right size is kept, whatever its
/// format. [main]
bool alloc_texture(gl_texture_resource*& tex, int height, int width, int format);

/// The same for a texture that stays with its owner; the cache is not consulted. [main]
bool alloc_texture(object_ref<gl_texture_resource>& tex, int height, int width, int format);

/// Gives `tex` back to the cache, reference and all, and sets it to null. Always true. [main]
bool release_texture(gl_texture_resource*& tex);

/// Releases every cached texture. [main]
void clear_texture_cache();
