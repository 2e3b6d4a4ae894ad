#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// Bands of noise over the picture while it is scanned forwards or backwards.
//
// Target:  the window.
// Unit 0:  texIn, the picture shown, linear.
// Taps:    1.
uniform sampler2DRect texIn;
uniform float scale;  // 9876.78 over the height on screen in pixels
uniform float time;   // seconds
uniform float h;      // height of the screen; not used

void main()
{
    vec2 st = gl_TexCoord[0].st;
    float noise = mod((time * cos(st.t) - time * time * sin(st.s)) * scale, 1.0);
    float alpha = 0.5 * pow(clamp(cos(0.1 * st.t + 0.2), 0.0, 1.0), 4.0);
    gl_FragColor = texture2DRect(texIn, st) + alpha * vec4(noise, noise, noise, 1.0);
}
