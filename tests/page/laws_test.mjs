// Laws of the library that hold for all inputs, tried on its build for WebAssembly: on the samples, on the corpus of the
// fuzzers, and on both damaged, as every message.
//
//   node laws_test.mjs ENGINE [ROUNDS]
import assert from "node:assert/strict";
import {readFileSync, readdirSync} from "node:fs";
import {engineOf} from "./engine.mjs";

const root = new URL("../../", import.meta.url);
const engine = engineOf(process.argv[2]);
const rounds = Number(process.argv[3] ?? 1);
const types = engine.types().map(type => type.name);
assert.equal(types.length, 31);
const text = bytes => new TextDecoder().decode(bytes);
const hex = bytes => Buffer.from(bytes).toString("hex");

let seed = 1;
const random = limit => (seed = (Math.imul(seed, 1103515245) + 12345) >>> 0) % limit;

const samples = readdirSync(new URL("samples/", root)).filter(each => each.endsWith(".bin"))
    .map(file => [file.split(".")[0], new Uint8Array(readFileSync(new URL(`samples/${file}`, root)))]);
const corpus = readFileSync(new URL("fuzz/corpus.txt", root), "utf8").split("\n")
    .map(line => new Uint8Array(Buffer.from(line, "hex"))).filter(each => each.length <= 4096);

function damaged(bytes) {
  const changed = [...bytes];
  for (let change = 0; change <= random(3); ++change) {
    changed.splice(random(changed.length + 1), random(3), ...Array.from({length: random(3)}, () => random(256)));
  }
  return new Uint8Array(changed);
}

const seen = {CODEC_OK: 0, CODEC_ERR_TRUNCATED: 0, CODEC_ERR_BAD_WIRE_TYPE: 0, CODEC_ERR_WRONG_WIRE_TYPE: 0};

function holdsFor(type, bytes) {
  const what = `${type} ${hex(bytes)}`;
  const {summary, json, nodes} = engine.open(0, type, bytes);
  ++seen[summary.result];
  // The walk, which shares no decoding code with the library, comes to the same result.
  assert.equal(summary.disagreement, undefined, what);
  assert.equal(summary.result === "CODEC_OK", summary.failure === undefined, what);
  if (summary.failure) assert.ok(summary.failure.offset <= bytes.length, what);
  assert.equal(nodes.length > 0, bytes.length > 0, what);

  // What was read encodes to a message that reads as the same, and is canonical.
  const once = engine.encode(type, text(json));
  if (summary.result === "CODEC_OK") assert.equal(once.length, summary.encoded, what);
  if (summary.canonical) assert.equal(hex(once), hex(bytes), what);
  const again = engine.open(1, type, once);
  assert.equal(again.summary.result, "CODEC_OK", what);
  assert.equal(again.summary.canonical, true, what);
  assert.equal(text(again.json), text(json), what);
  assert.equal(engine.segments(1, false).length, once.length, what);
  if (summary.result === "CODEC_OK") assert.deepEqual(engine.differences(), {order: 0, differences: []}, what);
  return once;
}

// Which of two messages is greater does not depend on which comes first.
function areOrdered(type, a, b) {
  const what = `${type} ${hex(a)} ${hex(b)}`;
  const orderOf = (first, second) => {
    engine.open(0, type, first);
    engine.open(1, type, second);
    const {order, differences} = engine.differences();
    assert.equal(order === 0, differences.length === 0, what);
    return Math.sign(order);
  };
  assert.equal(orderOf(a, b) + orderOf(b, a), 0, what);
}

let tried = 0;
for (const [type, bytes] of samples) {
  holdsFor(type, bytes);
  for (let length = 0; length < bytes.length; length += 1 + (bytes.length >> 6)) holdsFor(type, bytes.slice(0, length));
  for (let round = 0; round < 20 * rounds; ++round, ++tried) {
    const one = holdsFor(type, damaged(bytes));
    if (round % 4 === 0) areOrdered(type, one, holdsFor(type, damaged(bytes)));
  }
}
for (let round = 0; round < 4000 * rounds; ++round, ++tried) {
  const bytes = corpus[random(corpus.length)];
  holdsFor(types[random(types.length)], round % 2 === 0 ? bytes : damaged(bytes));
}
for (const [result, count] of Object.entries(seen)) assert.ok(count >= 100, `${result} was seen ${count} times`);
console.log(`${tried} inputs: ${Object.entries(seen).map(([result, count]) => `${count} ${result}`).join(", ")}`);
