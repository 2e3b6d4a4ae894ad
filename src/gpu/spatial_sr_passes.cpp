// SPDX-License-Identifier: MIT
#include "gpu/spatial_sr_passes.h"

#include "gpu/pass.h"

#include <shaders/spatial_sr.h>

namespace sr {

void estimate(gl_texture_resource* out, gl_texture_resource* rgb) {
    Pass(code_frag_Ia, out).input("texLowRes", rgb).run();
}

void compensated_estimate(gl_texture_resource* out, gl_texture_resource* rgb, const Reference& ref,
                          int factor) {
    Pass(code_frag_Ib, out)
        .input("texLP", ref.enhanced)
        .input("texLP0", ref.rgb)
        .input("texVP0", rgb)
        .input("motionVect", ref.vectors)
        .set("constU", static_cast<float>(factor))
        .set("mb_size", ref.block)
        .run();
}

void first_candidates(gl_texture_resource* out, gl_texture_resource* estimate) {
    Pass(code_frag_II, out).input("texHighRes", estimate).set("threshold", threshold).run();
}

void differences(gl_texture_resource* out, gl_texture_resource* rgb, gl_texture_resource* estimate,
                 Displacement d, int factor) {
    Pass(code_frag_III, out)
        .input("texLowRes", rgb)
        .input("texHighRes", estimate)
        .set("d", paravec2<float>{d.x, d.y})
        .set("constU", static_cast<float>(factor))
        .run();
}

void average_rows(gl_texture_resource* out, gl_texture_resource* differences) {
    Pass(code_frag_IVa, out).input("texDiff", differences).run();
}

void average_columns(gl_texture_resource* out, gl_texture_resource* averages) {
    Pass(code_frag_Va, out).input("texDiff", averages).run();
}

void best_candidates(gl_texture_resource* out, gl_texture_resource* estimate,
                     gl_texture_resource* candidates, gl_texture_resource* errors, Displacement d) {
    Pass(code_frag_VI, out)
        .input("texHighRes", estimate)
        .input("texResult", candidates)
        .input("texWeight", errors)
        .set("d", paravec2<float>{d.x, d.y})
        .run();
}

void winners(gl_texture_resource* out, gl_texture_resource* candidates) {
    Pass(code_frag_VII, out).input("texResult", candidates).run();
}

}  // namespace sr
