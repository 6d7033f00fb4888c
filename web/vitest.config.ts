import { defineConfig } from "vitest/config";

export default defineConfig({
  test: { include: ["tests/**/*.test.ts"], testTimeout: 600_000, hookTimeout: 60_000, fileParallelism: false,
    setupFiles: ["tests/support/pause.ts"] },
});
