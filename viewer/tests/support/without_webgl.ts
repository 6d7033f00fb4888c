// A browser without WebGL.

/** Runs in the page before its own script. */
export function withoutWebGl(): void {
  const known = HTMLCanvasElement.prototype.getContext;
  HTMLCanvasElement.prototype.getContext = function (this: HTMLCanvasElement, type: string, ...more: unknown[]) {
    return type.startsWith("webgl") ? null : Reflect.apply(known, this, [type, ...more]);
  } as typeof known;
}
