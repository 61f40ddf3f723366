// Text as bytes in UTF-8 and back.

const encoder = new TextEncoder();
const decoder = new TextDecoder();

export const bytesOf = text => encoder.encode(text);
export const textOf = bytes => decoder.decode(bytes);
