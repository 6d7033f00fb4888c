export { Tangent, type Curve, type Infinity, type Key, type KeyTangents, type Obstacle, type Placing, type Sliding } from "./animation";
export { REPEATS, SHORT, SparingClock, type Clock } from "./clock";
export { Engine, type OpenOptions } from "./engine";
export { EngineCrash, EngineError, type ErrorKind } from "./errors";
export type { SceneFile } from "./files";
export { FORMS, type Scene, type Camera, type CameraView, type Description, type Form, type History, type Progress, type SceneObject,
  type Take, type TrailFields, type TrailOptions, type Written } from "./scene";
export type { Stretch, TrailArrays, Trails } from "./trails";
