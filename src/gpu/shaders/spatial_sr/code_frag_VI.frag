#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// Keeps the best candidate: the one so far, or one of the eight at d and -d whose surroundings
// match better. Errors are compared first, so that only the winner is read.
//
// Target:  W x f, H x f, 8 bits: rgb the candidate, a its error. Not the input.
// Unit 0:  texHighRes, the estimate, nearest.
// Unit 1:  texResult, the candidates so far, nearest.
// Unit 2:  texWeight, the errors at d + (0, 0), (0, 1), (1, 0), (1, 1), nearest.
// Taps:    4.
uniform sampler2DRect texHighRes;
uniform sampler2DRect texResult;
uniform sampler2DRect texWeight;
uniform vec2 d;

void main()
{
    vec2 st = gl_TexCoord[0].st;
    vec4 color = texture2DRect(texResult, st);
    vec4 forward = texture2DRect(texWeight, st);
    vec4 backward = texture2DRect(texWeight, st - d);
    vec3 best = vec3(0.0, 0.0, color.a);  // displacement, (0, 0) for none, and error
    // An equal error is enough, so that of equals the last one wins.
    best = forward.x <= best.z ? vec3(d, forward.x) : best;
    best = forward.y <= best.z ? vec3(d + vec2(0.0, 1.0), forward.y) : best;
    best = forward.z <= best.z ? vec3(d + vec2(1.0, 0.0), forward.z) : best;
    best = forward.w <= best.z ? vec3(d + vec2(1.0, 1.0), forward.w) : best;
    best = backward.x <= best.z ? vec3(-d, backward.x) : best;
    best = backward.y <= best.z ? vec3(-d - vec2(0.0, 1.0), backward.y) : best;
    best = backward.z <= best.z ? vec3(-d - vec2(1.0, 0.0), backward.z) : best;
    best = backward.w <= best.z ? vec3(-d - vec2(1.0, 1.0), backward.w) : best;
    vec3 candidate = texture2DRect(texHighRes, st + best.st).rgb;
    gl_FragColor = best.st == vec2(0.0) ? color : vec4(candidate, best.z);
}
