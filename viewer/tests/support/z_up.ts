// A scene above z, as an FBX file: no other format with cameras has such scenes.

/** Times as FBX counts them, of frames at 24 a second. */
const ticks = (frame: number) => (frame * 46186158000) / 24;

/** z up, y to the back, 24 frames a second. */
const SETTINGS = [["UpAxis", 2], ["UpAxisSign", 1], ["FrontAxis", 1], ["FrontAxisSign", -1], ["CoordAxis", 0], ["CoordAxisSign", 1], ["TimeMode", 11]] as const;

/** A ball that travels, and a camera that travels and turns, looking along its own x axis through a lens of
 * 35 mm; its film is 1.5 by 1 inches. */
export const Z_UP = (() => {
  const objects: string[] = [], connections: string[] = [];
  const curves = (id: number, object: number, name: string, axes: Record<string, readonly number[]>) => {
    objects.push(`AnimationCurveNode: ${id}, "AnimCurveNode::T", "" {\nProperties70: {\n}\n}`);
    connections.push(`C: "OO",${id},20`, `C: "OP",${id},${object}, "${name}"`);
    Object.entries(axes).forEach(([axis, values], k) => {
      const list = (of: readonly number[]) => `*${of.length} {\na: ${of.join()}\n}`;
      objects.push(`AnimationCurve: ${id + 1 + k}, "AnimCurve::", "" {\nKeyTime: ${list([1, 13, 25].map(ticks))}\n` +
        `KeyValueFloat: ${list(values)}\nKeyAttrFlags: ${list([4, 4, 4])}\nKeyAttrDataFloat: ${list(new Array<number>(12).fill(0))}\n` +
        `KeyAttrRefCount: ${list([1, 1, 1])}\n}`);
      connections.push(`C: "OP",${id + 1 + k},${id}, "d|${axis}"`);
    });
  };
  const property = (name: string, ...values: number[]) => `P: "${name}", "${values.length === 3 ? "Vector3D" : "double"}", "", "A",${values.join()}`;
  const model = (id: number, name: string, kind: string, ...properties: string[]) => {
    objects.push(`Model: ${id}, "Model::${name}", "${kind}" {\nProperties70: {\n${properties.join("\n")}\n}\n}`);
    connections.push(`C: "OO",${id},0`);
  };
  model(1, "ball", "Null");
  model(2, "shot", "Camera", property("Lcl Translation", 0, -40, 2));
  objects.push(`NodeAttribute: 3, "NodeAttribute::", "Camera" {\nProperties70: {\n${[
    property("FilmWidth", 1.5), property("FilmHeight", 1), property("FocalLength", 35)].join("\n")}\nP: "ApertureMode", "enum", "", "",3\n}\n}`);
  connections.push('C: "OO",3,2');
  objects.push(`AnimationStack: 10, "AnimStack::shot", "" {\nProperties70: {\nP: "LocalStart", "KTime", "Time", "",${ticks(1)}\n` +
    `P: "LocalStop", "KTime", "Time", "",${ticks(25)}\n}\n}`, 'AnimationLayer: 20, "AnimLayer::base", "" {\n}');
  connections.push('C: "OO",20,10');
  curves(100, 1, "Lcl Translation", { X: [-8, 0, 8], Y: [0, 3, 0], Z: [0, 6, 1] });
  curves(200, 2, "Lcl Translation", { X: [-4, 0, 6], Y: [-40, -40, -38], Z: [2, 3, 2] });
  curves(300, 2, "Lcl Rotation", { X: [90, 90, 90], Y: [0, 4, 8], Z: [85, 90, 98] });
  return "; FBX 7.5.0 project file\nFBXHeaderExtension: {\nFBXHeaderVersion: 1003\nFBXVersion: 7500\n}\n" +
    `GlobalSettings: {\nVersion: 1000\nProperties70: {\n${SETTINGS.map(([name, value]) => `P: "${name}", "int", "Integer", "",${value}`).join("\n")}\n}\n}\n` +
    `Objects: {\n${objects.join("\n")}\n}\nConnections: {\n${connections.join("\n")}\n}\nTakes: {\nCurrent: ""\n}\n`;
})();
