// Builds one file: script and style inside the page, and a policy that forbids everything else. Beside it, for pages with
// the engine in them, the script of its Worker.

import { createHash } from "node:crypto";
import { readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { dirname, join } from "node:path";
import { defineConfig } from "vitest/config";
import { build, type Plugin } from "vite";

const hash = (text: string) => `'sha256-${createHash("sha256").update(text).digest("base64")}'`;

/** The licence of the library in the page, which has to go wherever the page goes. */
const notice = () => {
  const library = dirname(createRequire(import.meta.url).resolve("three"));
  return `<!--\nThis page holds parts of three.js.\n\n${readFileSync(join(library, "..", "LICENSE"), "utf8").trim()}\n-->\n`;
};

/** Puts the one script and the one style sheet of the build into the page, and their hashes into its policy. */
function oneFile(): Plugin {
  return {
    name: "one-file",
    enforce: "post",
    generateBundle(_options, bundle) {
      const page = bundle["index.html"];
      if (page?.type !== "asset") throw new Error("the build made no index.html");
      let script = "";
      let style = "";
      for (const [name, item] of Object.entries(bundle)) {
        if (item.type === "chunk") script += item.code;
        else if (name.endsWith(".css")) style += item.source;
        else if (item !== page) throw new Error(`${name} would be a file beside the page`);
        if (item !== page) delete bundle[name];
      }
      // Nothing in a script or style may end its element.
      script = script.replace(/<\/(script)/gi, "<\\/$1").replace(/<!--/g, "<\\!--").trim();
      style = style.replace(/<\//g, "<\\/").trim();
      const policy = [
        "default-src 'none'", `script-src ${hash(script)}`, `style-src ${hash(style)}`,
        "base-uri 'none'", "form-action 'none'",
      ].join("; ");
      const without = String(page.source)
        .replace(/<script type="module"[^>]*><\/script>/g, "")
        .replace(/<link rel="stylesheet"[^>]*>/g, "")
        .replace(/<link rel="modulepreload"[^>]*>/g, "");
      page.source = without
        .replace("<!--policy-->", () => `<meta http-equiv="Content-Security-Policy" content="${policy}">`)
        .replace("<!--style-->", () => `<style>${style}</style>`)
        .replace("<!--script-->", () => `${notice()}<script type="module">${script}</script>`);
      if ((page.source.match(/<!--trails-->/g) ?? []).length !== 1)
        throw new Error("the page needs exactly one <!--trails-->");
    },
  };
}

/** worker.js: web/src/live/worker.ts as a script that imports nothing. */
function workerBeside(): Plugin {
  return {
    name: "worker-beside",
    apply: "build",
    async writeBundle({ dir }) {
      const entry = join(__dirname, "..", "web", "src", "live", "worker.ts");
      const built = await build({
        configFile: false, logLevel: "warn",
        build: { lib: { entry, formats: ["es"] }, write: false, target: "es2022" },
      });
      const [{ output }] = built as { output: { code: string }[] }[];
      if (output.length !== 1) throw new Error("the Worker's script is not one file");
      writeFileSync(join(dir!, "worker.js"), output[0].code);
    },
  };
}

export default defineConfig({
  base: "./",
  plugins: [oneFile(), workerBeside()],
  build: {
    target: "es2022",
    outDir: process.env.VANTORELIX_PAGE_FOLDER ?? "dist",
    emptyOutDir: true,
    modulePreload: false,
    cssCodeSplit: false,
    assetsInlineLimit: 0,
    chunkSizeWarningLimit: 2000,
  },
  test: {
    include: ["tests/**/*.test.ts"],
    testTimeout: 60_000,
    hookTimeout: 60_000,
    // A browser on a busy machine now and then misses what a test waits for. The report marks a second try with "retry x1".
    retry: 1,
    fileParallelism: false,
  },
});
