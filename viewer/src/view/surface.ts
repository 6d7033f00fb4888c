// What the trails are drawn on.

import {
  LinearSRGBColorSpace, Mesh, OrthographicCamera, PlaneGeometry, Scene, ShaderMaterial, WebGLRenderer, WebGLRenderTarget, type Camera,
} from "three";
import type { Drawing, TrailLayers } from "./layers";
import type { Projection } from "./primitives/projection";

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
  /** Returns when everything is drawn. */
  finish(): void;
  /** Gives back what the browser lent it. */
  dispose(): void;
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
  private readonly renderer: WebGLRenderer;
  private disposed = false;
  private readonly smoothed = new WebGLRenderTarget(1, 1, { samples: 4, stencilBuffer: true });
  private readonly copy = new Scene();
  private readonly flat = new OrthographicCamera(-1, 1, 1, -1, 0, 1);

  /** `gone` is called when the browser took WebGL away and did not give it back; `back` when it did. Throws where there is none. */
  constructor(private readonly scene: Scene, private readonly layers: TrailLayers, back: () => void, gone: () => void) {
    this.renderer = makeRenderer();
    let timer = 0;
    this.canvas.addEventListener("webglcontextlost", () => {
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
  }

  get canvas(): HTMLCanvasElement {
    return this.renderer.domElement;
  }

  resize(width: number, height: number, ratio: number): void {
    const most = this.renderer.capabilities.maxTextureSize;
    if (Math.max(width, height) * ratio > most) throw new Error(`This browser draws at most ${most} pixels in a row: choose a smaller picture`);
    this.renderer.setPixelRatio(ratio);
    this.renderer.setSize(width, height, false);
    this.smoothed.setSize(this.canvas.width, this.canvas.height);
  }

  draw({ drawing, camera, background }: View): number {
    const stretches = this.layers.show(drawing);
    const { renderer } = this;
    renderer.setClearColor(background);
    if (drawing.smooth) renderer.setRenderTarget(this.smoothed);
    renderer.render(this.scene, camera);
    if (drawing.smooth) {
      renderer.setRenderTarget(null);
      renderer.render(this.copy, this.flat);
    }
    return stretches;
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
