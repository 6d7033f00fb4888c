// The two cameras, and the mouse and fingers that move them. The store's pose rules: what is dragged becomes a pose,
// and a pose from anywhere else moves the cameras.

import { MOUSE, OrthographicCamera, PerspectiveCamera, Spherical, Vector3, type Camera } from "three";
import { OrbitControls } from "three/examples/jsm/controls/OrbitControls.js";
import type { Vec3 } from "../source/trail";
import { DEGREE, halfView } from "../model/pose";
import type { Gate } from "../model/camera/film";
import type { CameraPose } from "../model/state";
import { FilmCamera, type Standing } from "./primitives/film_camera";

export class CameraRig {
  private readonly perspective = new PerspectiveCamera();
  private readonly parallel = new OrthographicCamera();
  private readonly film = new FilmCamera();
  private filming = false;
  private readonly controls: OrbitControls;
  private pose: CameraPose;
  private width = 1;
  private height = 1;
  private reach = 1;
  private applying = false;

  constructor(element: HTMLElement, pose: CameraPose, private readonly origin: () => Vec3,
              private readonly moved: (pose: CameraPose) => void) {
    this.pose = pose;
    this.controls = new OrbitControls(this.perspective, element);
    this.controls.zoomToCursor = true;
    this.controls.addEventListener("change", () => this.takePose());
  }

  get camera(): Camera {
    return this.filming ? this.film : this.own;
  }

  private get own(): PerspectiveCamera | OrthographicCamera {
    return this.pose.view === "persp" ? this.perspective : this.parallel;
  }

  /** From now on it is seen through a camera of the scene, which stands there and has this on its film; null: freely. */
  lookThrough(view: { standing: Standing; gate: Gate } | null): void {
    this.filming = view !== null;
    this.controls.enabled = view === null;
    if (!view) return;
    const { at } = view.standing;
    this.film.show(view.standing, view.gate, this.width / this.height, Math.hypot(...at) + this.reach);
  }

  dispose(): void {
    this.controls.dispose();
  }

  onGesture(begin: () => void, end: () => void): void {
    this.controls.addEventListener("start", begin);
    this.controls.addEventListener("end", end);
  }

  resize(width: number, height: number): void {
    [this.width, this.height] = [width, height];
    this.show(this.pose);
  }

  /** How far from its target the camera has to see. */
  setReach(reach: number): void {
    this.reach = reach;
    this.show(this.pose);
  }

  show(pose: CameraPose): void {
    this.applying = true;
    this.pose = pose;
    const origin = this.origin();
    const { own: camera, controls } = this;
    controls.object = camera;
    const flat = pose.view !== "persp";
    controls.enableRotate = !flat;
    controls.mouseButtons = { LEFT: flat ? MOUSE.PAN : MOUSE.ROTATE, MIDDLE: MOUSE.PAN, RIGHT: MOUSE.PAN };
    controls.target.set(pose.target[0] - origin[0], pose.target[1] - origin[1], pose.target[2] - origin[2]);
    const angles = new Spherical(pose.distance, (90 - pose.elevation) * DEGREE, pose.azimuth * DEGREE).makeSafe();
    camera.position.setFromSpherical(angles).add(controls.target);
    camera.zoom = 1;
    this.project();
    controls.update();
    camera.updateMatrixWorld();
    this.applying = false;
  }

  private project(): void {
    const { distance } = this.pose;
    const aspect = this.width / this.height;
    const [across, up] = halfView(aspect);
    if (this.pose.view === "persp") {
      this.perspective.fov = (2 * Math.atan(up)) / DEGREE;
      this.perspective.aspect = aspect;
      this.perspective.far = distance + this.reach;
      this.perspective.near = Math.max(distance - this.reach, this.perspective.far * 1e-4);
    } else {
      this.parallel.top = up * distance;
      this.parallel.right = across * distance;
      this.parallel.bottom = -this.parallel.top;
      this.parallel.left = -this.parallel.right;
      this.parallel.near = distance - this.reach;
      this.parallel.far = distance + this.reach;
    }
    this.own.updateProjectionMatrix();
  }

  private takePose(): void {
    if (this.applying) return;
    const { own: camera, controls } = this;
    const origin = this.origin();
    const offset = new Vector3().subVectors(camera.position, controls.target);
    const angles = new Spherical().setFromVector3(offset);
    const flat = this.pose.view !== "persp";
    this.moved({
      view: this.pose.view,
      target: [controls.target.x + origin[0], controls.target.y + origin[1], controls.target.z + origin[2]],
      distance: flat ? this.pose.distance / camera.zoom : angles.radius,
      azimuth: flat ? this.pose.azimuth : angles.theta / DEGREE,
      elevation: flat ? this.pose.elevation : 90 - angles.phi / DEGREE,
    });
  }
}
