// What the trails are drawn on.

import {
  LinearSRGBColorSpace, Mesh, OrthographicCamera, PlaneGeometry, Scene, ShaderMaterial, WebGLRenderer, WebGLRenderTarget, type Camera,
} from "three";
import type { Drawing, TrailLayers } from "./layers";
import { isEmpty } from "./primitives/moved";
import type { Area, Projection } from "./primitives/projection";

export interface View {
  readonly drawing: Drawing;
  readonly camera: Camera;
  readonly projection: Projection;
  readonly background: string;
}

export interface Surface {
  readonly canvas: HTMLCanvasElement;
  /** In CSS pixels, and device pixels for each. Empties the picture. Throws an Error for the reader if that is too large. */
  resize(width: number, height: number, ratio: number): void;
  /** Returns the number of stretches. */
  draw(view: View): number;
  /**
   * Draws an area of the picture anew, as `draw` would have it, in a view with smooth edges that was drawn before; only the trails
   * given are in it. False where that cannot be done.
   */
  drawArea(view: View, area: Area, trails: ReadonlySet<number>): boolean;
  /** Returns when everything is drawn. */
  finish(): void;
  /** Gives back what the browser lent it. */
  dispose(): void;
}

/** CSS pixels: so many are a whole number of the screen's at the usual zooms of browsers. */
const STEP = 4;

/** The pixels of the picture that an area takes, and so many CSS pixels a step; null where these are not whole. */
export function pixelsOf({ left, top, right, bottom }: Area, ratio: number, { width, height }: Projection): Area | null {
  if (![STEP, width, height].every((length) => Number.isInteger(length * ratio))) return null;
  const low = (from: number) => ratio * STEP * Math.floor(Math.max(0, from) / STEP);
  const high = (to: number, most: number) => Math.min(ratio * most, ratio * STEP * Math.ceil(to / STEP));
  return { left: low(left), top: low(top), right: high(right, width), bottom: high(bottom, height) };
}

/** Milliseconds within which a browser that took WebGL away gives it back, if ever. */
const PATIENCE = 3000;

/** Asks for the context first, because three writes an error where there is none. */
function makeRenderer(): WebGLRenderer {
  const canvas = document.createElement("canvas");
  const context = canvas.getContext("webgl2", { antialias: false, stencil: true });
  if (!context) throw new Error("WebGL 2 is off");
  return new WebGLRenderer({ canvas, context, antialias: false, stencil: true });
}

/** Copies a picture that was drawn elsewhere. */
function copier(): ShaderMaterial {
  return new ShaderMaterial({
    uniforms: { picture: { value: null } },
    vertexShader: "varying vec2 at; void main() { at = uv; gl_Position = vec4(position.xy, 0.0, 1.0); }",
    fragmentShader: "uniform sampler2D picture; varying vec2 at; void main() { gl_FragColor = vec4(texture2D(picture, at).rgb, 1.0); }",
    depthTest: false, depthWrite: false,
  });
}

/**
 * By WebGL. Edges are smoothed in a picture beside the canvas: software takes two to three times as long for that, so it
 * is left out where a drawing has to be quick. A canvas that smooths by itself cannot leave it out.
 */
export class GlSurface implements Surface {
  /** Where an area that was drawn anew is shown, above the canvas. */
  private readonly patch = document.createElement("canvas");
  private readonly onPatch = this.patch.getContext("2d")!;
  private readonly renderer: WebGLRenderer;
  private ratio = 1;
  private disposed = false;
  private readonly smoothed = new WebGLRenderTarget(1, 1, { samples: 4, stencilBuffer: true });
  private readonly copy = new Scene();
  private readonly flat = new OrthographicCamera(-1, 1, 1, -1, 0, 1);

  /** `gone` is called when the browser took WebGL away and did not give it back; `back` when it did. Throws where there is none. */
  constructor(private readonly scene: Scene, private readonly layers: TrailLayers, back: () => void, gone: () => void) {
    this.renderer = makeRenderer();
    let timer = 0;
    this.canvas.addEventListener("webglcontextlost", () => {
      this.patch.remove();
      if (!this.disposed) timer = window.setTimeout(gone, PATIENCE);
    });
    this.canvas.addEventListener("webglcontextrestored", () => {
      clearTimeout(timer);
      back();
    });
    this.renderer.outputColorSpace = LinearSRGBColorSpace;
    const material = copier();
    material.uniforms.picture.value = this.smoothed.texture;
    const sheet = new Mesh(new PlaneGeometry(2, 2), material);
    sheet.frustumCulled = false;
    this.copy.add(sheet);
    this.patch.className = "patch";
  }

  get canvas(): HTMLCanvasElement {
    return this.renderer.domElement;
  }

  resize(width: number, height: number, ratio: number): void {
    const most = this.renderer.capabilities.maxTextureSize;
    if (Math.max(width, height) * ratio > most) throw new Error(`This browser draws at most ${most} pixels in a row: choose a smaller picture`);
    this.ratio = ratio;
    this.renderer.setPixelRatio(ratio);
    this.renderer.setSize(width, height, false);
    this.smoothed.setSize(this.canvas.width, this.canvas.height);
  }

  draw({ drawing, camera, background }: View): number {
    const stretches = this.layers.show(drawing);
    const { renderer } = this;
    this.patch.remove();
    renderer.setClearColor(background);
    if (drawing.smooth) renderer.setRenderTarget(this.smoothed);
    renderer.render(this.scene, camera);
    if (drawing.smooth) {
      renderer.setRenderTarget(null);
      renderer.render(this.copy, this.flat);
    }
    return stretches;
  }

  /** In a canvas above the other: that one, which is large, stays. */
  drawArea({ drawing, camera, projection, background }: View, area: Area, trails: ReadonlySet<number>): boolean {
    const { renderer, smoothed, layers } = this;
    const pixels = pixelsOf(area, this.ratio, projection);
    if (!pixels) return false;
    if (isEmpty(pixels)) return this.patch.remove(), true;
    const [x, y] = [pixels.left, this.canvas.height - pixels.bottom];
    const [width, height] = [pixels.right - pixels.left, pixels.bottom - pixels.top];
    layers.show(drawing);
    layers.only(trails);
    renderer.setClearColor(background);
    smoothed.scissor.set(x, y, width, height);
    smoothed.scissorTest = true; // which bounds the clearing, and the smoothing, too
    renderer.setRenderTarget(smoothed);
    renderer.render(this.scene, camera);
    smoothed.scissorTest = false;
    renderer.setRenderTarget(null);
    layers.only(null);
    const upwards = new Uint8Array(4 * width * height);
    renderer.readRenderTargetPixels(smoothed, x, y, width, height, upwards);
    this.show(pixels, upwards);
    return true;
  }

  /** Puts pixels, row by row from below, onto the patch. */
  private show({ left, top, right, bottom }: Area, upwards: Uint8Array): void {
    const { patch, ratio } = this;
    const image = this.onPatch.createImageData(right - left, bottom - top);
    const row = 4 * image.width;
    for (let y = 0; y < image.height; ++y) image.data.set(upwards.subarray(upwards.length - row * (y + 1), upwards.length - row * y), row * y);
    for (let i = 3; i < image.data.length; i += 4) image.data[i] = 255;
    if (patch.width !== image.width || patch.height !== image.height) [patch.width, patch.height] = [image.width, image.height];
    this.onPatch.putImageData(image, 0, 0);
    const inCss = { left: left / ratio, top: top / ratio, width: image.width / ratio, height: image.height / ratio };
    for (const [name, length] of Object.entries(inCss)) patch.style.setProperty(name, `${length}px`);
    if (!patch.isConnected) this.canvas.after(patch);
  }

  finish(): void {
    const gl = this.renderer.getContext();
    gl.readPixels(0, 0, 1, 1, gl.RGBA, gl.UNSIGNED_BYTE, new Uint8Array(4));
  }

  dispose(): void {
    this.disposed = true;
    this.renderer.dispose();
    this.renderer.forceContextLoss(); // a browser lends few of them
  }
}
