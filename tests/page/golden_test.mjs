// The engine under Node gives what zorv-inspect is expected to print, byte for byte, and the samples' own bytes.
//
//   node golden_test.mjs ENGINE
import assert from "node:assert/strict";
import {existsSync, readFileSync, readdirSync} from "node:fs";
import {engineOf, nodeFields} from "./engine.mjs";

const here = new URL("../", import.meta.url);
const samples = new URL("../samples/", here);
const golden = new URL("inspect/golden/", here);
const given = new URL("inspect/input/", here);
const engine = engineOf(process.argv[2]);
const text = bytes => new TextDecoder().decode(bytes);
const typeOf = name => name.split(".")[0];
let compared = 0;

// The only thing that the module asks for is a way to fail.
assert.deepEqual(WebAssembly.Module.imports(engine.module), [{module: "page", name: "fail", kind: "function"}]);

// What is expected of a command: its output and its status, each of which ends in a line break.
function expected(name) {
  const file = new URL(name, golden);
  if (!existsSync(file)) return null;
  const [, output, status] = /^([^]*)status (\d+)\n$/.exec(readFileSync(file, "utf8"));
  ++compared;
  return {output, status: Number(status)};
}

// What is wrong follows the output: after a failure where and why, else how many fields were skipped.
function agrees(output, summary, {output: whole, status}, name) {
  assert.equal(status, summary.failure ? 1 : 0, name);
  assert.equal(output, whole.slice(0, output.length), name);
  const errors = whole.slice(output.length);
  if (!summary.failure) {
    if (errors !== "") assert.match(errors, /^zorv-inspect: [^\n]* \d+ unknown fields? skipped\n$/, name);
    assert.ok(errors === "" || summary.unknown > 0, name);
    return;
  }
  const {offset, path, reason} = summary.failure;
  for (const part of [summary.result, `offset ${offset} (0x${offset.toString(16)}), ${path}`, reason]) {
    assert.ok(errors.includes(part), `${name}: ${part} is not in ${errors}`);
  }
}

function everyByteIsInOneNode({nodes, bytes}, name) {
  const at = Object.fromEntries(nodeFields.map((field, index) => [field, index]));
  let covered = 0;
  for (let node = 0; node < nodes.length; node += nodeFields.length) {
    assert.equal(nodes[node + at.start], covered, name);
    covered = nodes[node + at.ownEnd];
  }
  assert.equal(covered, bytes.length, name);
}

function looksAt(name, bytes) {
  const opened = engine.open(0, typeOf(name), bytes);
  everyByteIsInOneNode(opened, name);
  const decoded = expected(`decode.${name}`);
  if (decoded) agrees(text(opened.json), opened.summary, decoded, `decode.${name}`);
  const annotated = expected(`hex.${name}`);
  if (annotated) agrees(text(engine.written(0, "annotated")), opened.summary, annotated, `hex.${name}`);
  return opened;
}

let files = 0;
for (const file of readdirSync(samples).filter(each => each.endsWith(".bin"))) {
  const name = file.slice(0, -4);
  const bytes = new Uint8Array(readFileSync(new URL(file, samples)));
  const opened = looksAt(name, bytes);
  ++files;
  assert.equal(opened.summary.result, "CODEC_OK", name);
  // Another encoder writes negative numbers of 32 bits in ten bytes.
  assert.equal(opened.summary.canonical, name !== "api_policy.negative", name);
  if (!opened.summary.canonical) continue;
  // Back to the same bytes, from every form; and by an edit that changes nothing.
  assert.deepEqual(engine.encode(typeOf(name), text(opened.json)), bytes, name);
  assert.deepEqual(engine.encode(typeOf(name), text(engine.written(0, "text")), false), bytes, name);
  for (const form of ["hex", "dump", "base64"]) assert.deepEqual(engine.bytesOf(engine.written(0, form), form), bytes, name);
  assert.deepEqual(engine.guess(bytes).find(each => each.name === typeOf(name)).fits, true, name);
  for (let node = 0; node < opened.nodes.length / nodeFields.length; ++node) {
    const {value} = engine.describe(0, node, 1)[0];
    if (value !== undefined) assert.deepEqual(engine.withValue(node, value), bytes, `${name}: node ${node}`);
  }
  engine.open(1, typeOf(name), bytes);
  assert.deepEqual(engine.differences(), {order: 0, differences: []}, name);
  assert.equal(engine.segments(0, false).length, bytes.length, name);
}
for (const folder of [new URL("broken/", samples), given]) {
  for (const file of readdirSync(folder).filter(each => each.endsWith(".hex"))) {
    looksAt(file.slice(0, -4), engine.bytesOf(readFileSync(new URL(file, folder))));
    ++files;
  }
}

// From JSON and from the text form: the same bytes, or the same complaint.
function encodes(command, name, input, isJson) {
  const {output, status} = expected(`${command}.${name}`);
  const digits = output.replace(/\s/g, "");
  try {
    assert.equal(Buffer.from(engine.encode(typeOf(name), input, isJson)).toString("hex"), digits, name);
    assert.equal(status, 0, name);
  } catch (error) {
    if (error instanceof assert.AssertionError) throw error;
    assert.equal(status, 1, name);
    assert.ok(output.includes(error.message), `${name}: ${error.message} is not in ${output}`);
    assert.ok(error.at >= 0 && error.at <= input.length, name);
  }
}
for (const file of readdirSync(given).filter(each => each.includes("."))) {
  const name = file.replace(/\.\w+$/, "");
  const input = readFileSync(new URL(file, given));
  if (file.endsWith(".json")) encodes("encode", name, input, true);
  else if (file.endsWith(".txtpb")) encodes("convert", name, input, false);
  else continue;
  ++files;
}

// Every other command that has the same words in the page.
engine.open(0, "oam_req", new Uint8Array(readFileSync(new URL("oam_req.bin", samples))));
for (const form of ["hex", "dump", "base64", "text"]) {
  assert.equal(text(engine.written(0, form)), expected(`convert.${form}`).output, form);
}
const both = ["api_msg.bin", "api_msg.notification.bin"].map(file => new Uint8Array(readFileSync(new URL(file, samples))));
both.forEach((bytes, place) => engine.open(place, "api_msg", bytes));
const differences = engine.differences();
assert.equal(differences.differences.map(({path, a, b}) => `${path}: ${a} | ${b}\n`).join(""),
    expected("diff.all").output.replace(/^.*\n/, ""));
assert.equal(differences.order > 0 ? "first" : "second", /the (\w+) is greater/.exec(expected("diff.all").output)[1]);

// What is refused is named as in the page.
assert.throws(() => engine.messagesIn(new TextEncoder().encode("08:31-")),
    {message: 'the input is text, but neither digits, a dump nor base64; the form "bytes" reads it as bytes'});

assert.ok(compared >= 90, `only ${compared} outputs compared`);
assert.ok(files >= 90, `only ${files} files read`);
console.log(`${compared} outputs and ${files} files are as expected`);
