export { Engine, type Clock, type OpenOptions } from "./engine";
export { EngineCrash, EngineError, type ErrorKind } from "./errors";
export type { SceneFile } from "./files";
export { Tangent, type Scene, type Camera, type Curve, type Description, type History, type Infinity, type Key, type Progress,
  type SceneObject, type Take, type TrailFields, type TrailOptions } from "./scene";
export type { TrailArrays, Trails } from "./trails";
