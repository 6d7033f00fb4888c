// Where in the picture trails have moved since all of it was drawn: what lies elsewhere can stay as it was drawn.

import type { DrawnTrail } from "./batch";
import type { Area, Projection } from "./projection";

const EMPTY: Area = { left: Infinity, top: Infinity, right: -Infinity, bottom: -Infinity };

export const isEmpty = ({ left, top, right, bottom }: Area): boolean => !(left < right && top < bottom);

export const around = (a: Area, b: Area): Area => ({
  left: Math.min(a.left, b.left), top: Math.min(a.top, b.top), right: Math.max(a.right, b.right), bottom: Math.max(a.bottom, b.bottom),
});

export const within = (a: Area, b: Area): Area => ({
  left: Math.max(a.left, b.left), top: Math.max(a.top, b.top), right: Math.min(a.right, b.right), bottom: Math.min(a.bottom, b.bottom),
});

/** Whether two places do, of which both, one or none may be not a number. */
const differs = (a: Float32Array, b: Float32Array, i: number) =>
  (a[i] !== b[i] || a[i + 1] !== b[i + 1] || a[i + 2] !== b[i + 2]) && (a[i] === a[i] || b[i] === b[i]);

/** Collects places in the picture. */
export class MovedArea {
  area = EMPTY;

  /** Everywhere, if something lies behind the reader. */
  constructor(private readonly projection: Projection, private readonly margin: number) {}

  /** The places from one number to another, three numbers each. */
  add(places: Float32Array, first: number, end: number): void {
    for (let i = 3 * first; i < 3 * end; i += 3) {
      if (places[i] !== places[i]) continue; // there is none
      const spot = this.projection.spot(places[i], places[i + 1], places[i + 2]);
      this.area = around(this.area, spot ? this.beside(spot.x, spot.y) : this.everywhere);
    }
  }

  /** All of the pairs of places that differ, before and after; everywhere where they are not as many. */
  addPairs(before: Float32Array, after: Float32Array): void {
    if (before.length !== after.length) this.area = this.everywhere;
    else
      for (let i = 0; i < after.length; i += 6) {
        if (!differs(before, after, i) && !differs(before, after, i + 3)) continue;
        for (const places of [before, after]) this.add(places, i / 3, i / 3 + 2);
      }
  }

  private get everywhere(): Area {
    const { width, height } = this.projection;
    return { left: 0, top: 0, right: width, bottom: height };
  }

  private beside(x: number, y: number): Area {
    const { margin } = this;
    return { left: x - margin, top: y - margin, right: x + margin, bottom: y + margin };
  }
}

/** Remembers trails as they were when all was drawn. */
export class MovedTrails {
  private readonly before = new Map<number, Pick<DrawnTrail, "places" | "keyPlaces">>();

  /** To be told before a trail's places change. */
  note({ index, places, keyPlaces }: DrawnTrail): void {
    if (!this.before.has(index)) this.before.set(index, { places: places.slice(), keyPlaces });
  }

  /** After everything was drawn. */
  forget(): void {
    this.before.clear();
  }

  /** Adds what was drawn of these trails and what is to be drawn where they moved; lines go through every `stride`th sample. */
  addTo(area: MovedArea, trails: readonly DrawnTrail[], stride: number): void {
    for (const { index, places, keyPlaces } of this.before.size > 0 ? trails : []) {
      const before = this.before.get(index);
      if (!before) continue;
      let [first, last] = [Infinity, -1];
      for (let i = 0; i < places.length; i += 3) if (differs(before.places, places, i)) [first, last] = [Math.min(first, i / 3), i / 3];
      const [from, end] = [Math.max(0, first - stride), Math.min(places.length / 3, last + stride + 1)];
      for (const each of [before.places, places]) area.add(each, from, end);
      const same = before.keyPlaces.length === keyPlaces.length;
      for (let i = 0; i < Math.max(keyPlaces.length, before.keyPlaces.length); i += 3)
        if (!same || differs(before.keyPlaces, keyPlaces, i)) for (const each of [before.keyPlaces, keyPlaces]) area.add(each, i / 3, i / 3 + 1);
    }
  }
}
