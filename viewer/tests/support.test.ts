import { describe, expect, test } from "vitest";
import { readTrails } from "../src/source/embedded";
import { chromiumTest, useBrowser } from "./support/browser";
import { encodeScene } from "./support/trails";

const browser = useBrowser();

describe("pages for tests", () => {
  test("hold the trails that went in", () => {
    const { header, data } = encodeScene({
      trails: [
        { name: "a", points: [[0, 0, 0], [1, -2, 3], [NaN, 0, 0], [4, 4, 4]], keyTimes: [1, 4] },
        { name: "b", points: [[5, 5, 5]], startFrame: 3, keyTimes: [3.5], keyPoints: [[9, 8, 7]] },
      ],
    });
    const [a, b] = readTrails(header, Uint8Array.from(data).buffer);
    expect([...a.points.slice(0, 6)].map((c) => Math.round(c * 1e6) / 1e6)).toEqual([0, 0, 0, 1, -2, 3]);
    expect(a.points.slice(6, 9).every(Number.isNaN)).toBe(true);
    expect([...a.keyPoints].map(Math.round)).toEqual([0, 0, 0, 4, 4, 4]);
    expect([...b.keyTimes]).toEqual([3.5]);
    expect([...b.keyPoints].map(Math.round)).toEqual([9, 8, 7]);
    expect(b.startFrame).toBe(3);
    expect(b.colors.length).toBe(3);
  });

  test("open in a browser that draws with WebGL 2", async () => {
    const page = await browser.open({ trails: [{ name: "a", points: [[0, 0, 0], [1, 0, 0]] }] });
    expect(await page.title()).toContain("motion trails");
    const version = await page.evaluate(() =>
      String(document.createElement("canvas").getContext("webgl2")?.getParameter(WebGL2RenderingContext.VERSION)),
    );
    expect(version).toContain("WebGL 2");
  });

  test("report errors, and requests that the policy of the page stops", async () => {
    const page = await browser.open({ trails: [] });
    await page.evaluate(() => {
      console.error("seen");
      setTimeout(() => {
        throw new Error("thrown");
      });
      return fetch("http://127.0.0.1:9/asked").catch(() => null);
    });
    await page.waitForTimeout(50);
    const found = browser.problems.splice(0).join("\n");
    expect(found).toContain("console: seen");
    expect(found).toContain("error: thrown");
    expect(found).toMatch(/violates the following .*directive.*default-src 'none'/);
  });

  chromiumTest("report a request of a page without a policy", async () => {
    const page = await browser.open({ trails: [] });
    await page.goto("about:blank");
    await page.evaluate(() => fetch("http://127.0.0.1:9/asked").catch(() => null));
    expect(browser.problems.splice(0).join("\n")).toContain("request: http://127.0.0.1:9/asked");
  });
});
