import type { App } from "../model/app";
export class Viewport {
  constructor(_app: App, _host: HTMLElement) {}
  picture(): Promise<Blob> { return Promise.resolve(new Blob()); }
  trailsChanged(): void {}
}
