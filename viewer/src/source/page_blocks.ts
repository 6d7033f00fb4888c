// The elements of the page that hold data, which no script runs.

/** The text of an element, which is gone then: its memory is not needed twice. Null where there is none. */
export function takeBlock(id: string): string | null {
  const element = document.getElementById(id);
  element?.remove();
  return element && (element.textContent ?? "");
}

/** The bytes that a base64 text stands for. */
export function decodeBase64(text: string): ArrayBuffer {
  const native = (Uint8Array as unknown as { fromBase64?: (text: string) => Uint8Array<ArrayBuffer> }).fromBase64;
  if (native) return native.call(Uint8Array, text).buffer;
  const binary = atob(text);
  const bytes = new Uint8Array(binary.length);
  for (let i = 0; i < binary.length; ++i) bytes[i] = binary.charCodeAt(i);
  return bytes.buffer;
}
