// A canvas that is drawn again when something changed, once a picture, and as sharp as the screen is.

export class Layer {
  readonly canvas = document.createElement("canvas");
  private readonly context = this.canvas.getContext("2d")!;
  private waiting = false;

  /** `draw` gets the size in CSS pixels, on an empty canvas. */
  constructor(name: string, private readonly draw: (context: CanvasRenderingContext2D, width: number, height: number) => void) {
    this.canvas.className = `layer ${name}`;
    this.canvas.setAttribute("aria-hidden", "true");
    new ResizeObserver(() => this.invalidate()).observe(this.canvas);
  }

  get width(): number {
    return this.canvas.clientWidth;
  }

  invalidate(): void {
    if (this.waiting) return;
    this.waiting = true;
    requestAnimationFrame(() => {
      this.waiting = false;
      this.redraw();
    });
  }

  private redraw(): void {
    const { canvas, context } = this;
    const [width, height, ratio] = [canvas.clientWidth, canvas.clientHeight, window.devicePixelRatio];
    if (width === 0 || height === 0) return;
    canvas.width = Math.round(width * ratio);
    canvas.height = Math.round(height * ratio);
    context.scale(canvas.width / width, canvas.height / height);
    this.draw(context, width, height);
  }
}

/** Calls back with the place of a pointer that is pressed on the element and then moves, wherever it goes. */
export function onDrag(element: HTMLElement, moved: (x: number, begins: boolean) => void): void {
  const place = (event: PointerEvent) => event.clientX - element.getBoundingClientRect().left;
  element.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    element.setPointerCapture(event.pointerId);
    moved(place(event), true);
  });
  element.addEventListener("pointermove", (event) => {
    if (event.buttons & 1 && element.hasPointerCapture(event.pointerId)) moved(place(event), false);
  });
}
