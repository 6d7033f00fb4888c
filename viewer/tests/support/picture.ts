// Screenshots as pixels, and where points should be in them: worked out here by hand, not by what draws them.

import { PNG } from "pngjs";
import type { Page } from "playwright-core";
import type { Vec3 } from "../../src/source/trail";

export interface Point {
  x: number;
  y: number;
}

/** Degrees that the smaller side of the viewport sees. */
const FIELD_OF_VIEW = 35;

export interface Pose {
  view: "persp" | "front" | "side" | "top";
  target: Vec3;
  distance: number;
  azimuth: number;
  elevation: number;
}

export const poseHash = ({ view, target, distance, azimuth, elevation }: Pose): string =>
  `camera=${[view, ...target, distance, azimuth, elevation].join(",")}`;

const dot = (a: Vec3, b: Vec3) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];

/** The pixel of a point with y up, in a viewport of this size. */
export function project({ view, target, distance, azimuth, elevation }: Pose, p: Vec3, width: number, height: number): Point {
  const [ca, sa] = [Math.cos((azimuth * Math.PI) / 180), Math.sin((azimuth * Math.PI) / 180)];
  const [ce, se] = [Math.cos((elevation * Math.PI) / 180), Math.sin((elevation * Math.PI) / 180)];
  const d: Vec3 = [p[0] - target[0], p[1] - target[1], p[2] - target[2]];
  const depth = distance + dot(d, [-sa * ce, -se, -ca * ce]);
  const pixels = Math.min(width, height) / 2 / Math.tan((FIELD_OF_VIEW * Math.PI) / 360);
  const scale = pixels / (view === "persp" ? depth : distance);
  return {
    x: width / 2 + scale * dot(d, [ca, 0, -sa]),
    y: height / 2 - scale * dot(d, [-sa * se, ce, -ca * se]),
  };
}

export class Picture {
  private constructor(private readonly png: PNG, private readonly ratio: number) {}

  /** The viewport alone. */
  static async ofViewport(page: Page): Promise<Picture> {
    await settle(page);
    const shot = await page.locator(".viewport").screenshot();
    const png = PNG.sync.read(shot);
    const box = (await page.locator(".viewport").boundingBox())!;
    return new Picture(png, png.width / Math.round(box.width));
  }

  static read(data: Buffer): Picture {
    return new Picture(PNG.sync.read(data), 1);
  }

  get width(): number {
    return this.png.width / this.ratio;
  }

  get height(): number {
    return this.png.height / this.ratio;
  }

  /** Red, green, blue at a CSS pixel. */
  at({ x, y }: Point): Vec3 {
    const i = 4 * (Math.floor(y * this.ratio) * this.png.width + Math.floor(x * this.ratio));
    return [this.png.data[i], this.png.data[i + 1], this.png.data[i + 2]];
  }

  /** All pixels of nearly this colour. */
  pixelsOf(color: Vec3, tolerance = 12): Point[] {
    const found: Point[] = [];
    for (let y = 0; y < this.png.height; ++y)
      for (let x = 0; x < this.png.width; ++x) {
        const point = { x: (x + 0.5) / this.ratio, y: (y + 0.5) / this.ratio };
        if (near(this.at(point), color, tolerance)) found.push(point);
      }
    return found;
  }
}

export const near = (a: Vec3, b: Vec3, tolerance = 12): boolean => a.every((c, k) => Math.abs(c - b[k]) <= tolerance);

/** Pixels from a point to the nearest of some. */
export const distanceTo = (points: readonly Point[], { x, y }: Point): number =>
  points.reduce((least, p) => Math.min(least, Math.hypot(p.x - x, p.y - y)), Infinity);

/** Waits until the viewport has drawn everything as it is when nothing moves; the hash has the state by then. */
export const settle = (page: Page) => page.waitForSelector(".viewport[data-drawn=still]");

/** Points along a polyline, at most `apart` from each other. */
export function along(corners: readonly Point[], apart = 1): Point[] {
  return corners.slice(1).flatMap((b, i) => {
    const a = corners[i];
    const n = Math.max(1, Math.ceil(Math.hypot(b.x - a.x, b.y - a.y) / apart));
    return Array.from({ length: n }, (_, k) => ({ x: a.x + ((b.x - a.x) * k) / n, y: a.y + ((b.y - a.y) * k) / n }));
  });
}
