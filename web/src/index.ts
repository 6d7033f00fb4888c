export { REPEATS, SHORT, SparingClock, type Clock } from "./clock";
export { Engine, type OpenOptions } from "./engine";
export { EngineCrash, EngineError, type ErrorKind } from "./errors";
export type { SceneFile } from "./files";
export { FORMS, Tangent, type Scene, type Camera, type CameraView, type Curve, type Description, type Form, type History, type Infinity, type Key, type KeyTangents, type Obstacle,
  type Placing, type Progress, type SceneObject, type Sliding, type Take, type TrailFields, type TrailOptions, type Written } from "./scene";
export type { Stretch, TrailArrays, Trails } from "./trails";
