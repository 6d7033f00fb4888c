/** How a headless Chromium is started: WebGL in software, and nothing that asks for the network. */
export const BROWSER_ARGUMENTS = [
  "--no-sandbox", "--disable-gpu", "--use-gl=angle", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
  "--disable-quic", "--no-first-run", "--disable-background-networking", "--disable-component-update", "--disable-sync",
];
