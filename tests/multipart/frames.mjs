// SPDX-License-Identifier: MIT
// The messages between the test program and the scripts here. A number is four bytes, most
// significant first. A text is its length and its bytes. An absent text is the length 0xFFFFFFFF.

import { readSync } from 'node:fs';

const ABSENT = 0xffffffff;

function encodeNumber(number) {
  const bytes = Buffer.alloc(4);
  bytes.writeUInt32BE(number);
  return bytes;
}

function encodeText(text) {
  if (text === undefined) return [encodeNumber(ABSENT)];
  const bytes = Buffer.isBuffer(text) ? text : Buffer.from(text);
  return [encodeNumber(bytes.length), bytes];
}

// `reading`: { error, parts: [{ name, fileName, type, disposition, content }] }
export function encodeReading({ error = '', parts = [] }) {
  return Buffer.concat([
    ...encodeText(error),
    encodeNumber(parts.length),
    ...parts.flatMap(part => [part.name, part.fileName, part.type, part.disposition, part.content]
                                 .flatMap(encodeText)),
  ]);
}

export function writeText(bytes) {
  return new Promise(resolve => process.stdout.write(Buffer.concat(encodeText(bytes)), resolve));
}

function readExactly(count) {
  const bytes = Buffer.alloc(count);
  for (let done = 0; done < count;) {
    const got = readSync(0, bytes, done, count - done, null);
    if (got === 0) return undefined;
    done += got;
  }
  return bytes;
}

// The next text on standard input, or undefined at its end.
export function readText() {
  const length = readExactly(4);
  return length && readExactly(length.readUInt32BE());
}
