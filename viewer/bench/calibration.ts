// A page that always does the same work, of the kinds that opening and turning consist of. It tells a slow machine from
// a slow page, so it must never change.

import { writeFileSync } from "node:fs";

const SCRIPT = `
const bytes = new Uint8Array(6e6);
for (let i = 0, x = 1; i < bytes.length; ++i) bytes[i] = (x = (x * 1103515245 + 12345) & 0x7fffffff) >> 8;
let binary = "";
for (let i = 0; i < bytes.length; i += 30000) binary += String.fromCharCode.apply(null, bytes.subarray(i, i + 30000));
const text = btoa(binary);
const json = JSON.stringify(Array.from({ length: 50000 }, (_, i) => ({ name: "object" + i, at: [i, i / 3, -i] })));
const canvas = document.body.appendChild(document.createElement("canvas"));
[canvas.width, canvas.height] = [800, 600];
const gl = canvas.getContext("webgl2");
const shader = (type, source) => { const s = gl.createShader(type); gl.shaderSource(s, source); gl.compileShader(s); return s; };
const program = gl.createProgram();
gl.attachShader(program, shader(gl.VERTEX_SHADER, "attribute vec2 p; void main() { gl_Position = vec4(p, 0.0, 1.0); }"));
gl.attachShader(program, shader(gl.FRAGMENT_SHADER, "void main() { gl_FragColor = vec4(1.0); }"));
gl.linkProgram(program);
gl.useProgram(program);
const ends = new Float32Array(200000);
for (let i = 0; i < ends.length; ++i) ends[i] = Math.sin(i * 0.37) * Math.cos(i * 0.011);
gl.bindBuffer(gl.ARRAY_BUFFER, gl.createBuffer());
gl.bufferData(gl.ARRAY_BUFFER, ends, gl.STATIC_DRAW);
gl.enableVertexAttribArray(0);
gl.vertexAttribPointer(0, 2, gl.FLOAT, false, 0, 0);
window.calibrate = () => {
  const start = performance.now();
  const decoded = atob(text);
  const copy = new Uint8Array(decoded.length);
  for (let i = 0; i < copy.length; ++i) copy[i] = decoded.charCodeAt(i);
  const values = Float64Array.from(new Uint16Array(copy.buffer));
  const objects = JSON.parse(json).length;
  for (let i = 0; i < 5; ++i) {
    gl.clear(gl.COLOR_BUFFER_BIT);
    gl.drawArrays(gl.LINE_STRIP, 0, 20000);
  }
  gl.readPixels(0, 0, 1, 1, gl.RGBA, gl.UNSIGNED_BYTE, new Uint8Array(4));
  return values.length && objects ? performance.now() - start : 0;
};`;

declare global {
  interface Window {
    /** Does the fixed work once; milliseconds. */
    calibrate(): number;
  }
}

export function writeCalibration(file: string): void {
  writeFileSync(file, `<!doctype html><meta charset="utf-8"><title>calibration</title><body><script>${SCRIPT}</script>`);
}
