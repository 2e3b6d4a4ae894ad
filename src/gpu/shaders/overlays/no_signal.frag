// SPDX-License-Identifier: MIT
// A dark blue field with a soft band of noise that rolls down the screen, 50 pixels a second.
//
// Target:  the window. Texture coordinates are its pixels, origin at the top left.
// Inputs:  none.
uniform float scale;  // 9876.78 over the height of the field in pixels
uniform float h;      // height of the screen in pixels
uniform float time;   // seconds

void main()
{
    vec2 st = gl_TexCoord[0].st;
    float noise = fract((time * cos(st.t) - time * time * sin(st.s)) * scale);
    float phase = 0.1 * (st.t - 40.0 - mod(time * 50.0, h));
    float alpha = 0.2 * cos(clamp(phase, -1.571, 1.571));
    gl_FragColor = (1.0 - alpha) * vec4(0.0, 0.0, 0.4, 0.0) + alpha * vec4(noise, noise, noise, 1.0);
}
