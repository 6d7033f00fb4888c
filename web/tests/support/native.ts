// The same commands in the native engine.

import type { SceneFile } from "../../src/index";
import { written, type Command, type Results } from "./commands";
import { native } from "./engine";
import { runNative } from "./run_native";

export const nativeResults = (files: SceneFile[], take: string, commands: Command[]): Results =>
  runNative(native, files, take, written(commands));
