// The engine finds the messages of three samples in every capture, and survives captures that are damaged.
//
//   node captures_test.mjs ENGINE
import assert from "node:assert/strict";
import {readFileSync, readdirSync} from "node:fs";
import {engineOf} from "./engine.mjs";

const tests = new URL("../", import.meta.url);
const captures = new URL("inspect/captures/", tests);
const engine = engineOf(process.argv[2]);
const hex = bytes => Buffer.from(bytes).toString("hex");
const samples = ["api_msg.color", "api_msg", "api_msg.notification"]
    .map(name => hex(readFileSync(new URL(`../samples/${name}.bin`, tests))));

// How the streams are cut, and what is missing, where it is not all.
const streams = {"tcp_varint.pcap": "varint", "tcp_be32_ipv6.pcap": "be32", "tcp_le32_cooked_2.pcap": "le32",
                 "tcp_gap.pcapng": "varint", "udp.payloads.txt": "lines"};
const missing = {"tcp_gap.pcapng": [2, "left out: 1 TCP stream in part"],
                 "udp_cut_off.pcapng": [1, "left out: 2 datagrams cut off by the capture"]};
const files = readdirSync(captures).filter(each => /\.(pcap|pcapng|txt)$/.test(each));
for (const file of files) {
  const content = new Uint8Array(readFileSync(new URL(file, captures)));
  const {messages, notes} = engine.messagesIn(content, "auto", streams[file]);
  const [count, note] = missing[file] ?? [samples.length, ""];
  assert.deepEqual(messages.map(each => hex(each.bytes)), samples.slice(0, count), file);
  assert.ok(note === "" ? notes === "" : notes.endsWith(note), `${file}: ${notes}`);
  assert.deepEqual(messages.map(each => each.number), [0, 1, 2].slice(0, count), file);
}
assert.ok(files.length >= 10, `only ${files.length} captures`);

const datagram = engine.messagesIn(new Uint8Array(readFileSync(new URL("udp.pcapng", captures)))).messages[0];
assert.equal(datagram.time, "2026-11-22T23:48:46.000001Z");
assert.equal(datagram.from, "192.0.2.1:40000");
assert.equal(datagram.to, "192.0.2.2:4711");
assert.equal(engine.messagesIn(new Uint8Array(readFileSync(new URL("udp.pcapng", captures))), "pcap", "none", 4712).messages.length, 0);

// A capture by hand, in the other order of bytes and in nanoseconds: header, then a packet that is the message.
const number = value => [value >>> 24, value >>> 16 & 0xff, value >>> 8 & 0xff, value & 0xff];
const byHand = [...number(0xa1b23c4d), 0, 2, 0, 4, ...number(0), ...number(0), ...number(65535), ...number(147),
                ...number(1), ...number(999999999), ...number(2), ...number(2), 0x08, 0x07];
const [found] = engine.messagesIn(new Uint8Array(byHand)).messages;
assert.equal(found.time, "1970-01-01T00:00:01.999999Z");
assert.equal(hex(found.bytes), "0807");

// Without its last bytes, with other lengths, with noise: what is wrong is said, and nothing stops the engine.
let seed = 1, refused = 0, tried = 0;
const random = limit => (seed = (Math.imul(seed, 1103515245) + 12345) >>> 0) % limit;
for (const file of files.filter(each => !each.endsWith(".txt"))) {
  const whole = readFileSync(new URL(file, captures));
  for (let round = 0; round < 60; ++round) {
    const damaged = new Uint8Array(whole.subarray(0, round < 20 ? random(whole.length) : whole.length));
    for (let change = 0; round >= 20 && change < 1 + round % 4; ++change) {
      damaged[random(Math.min(damaged.length, 400))] = [0, 0xff, 0x80, random(256)][random(4)];
    }
    ++tried;
    try {
      refused += engine.messagesIn(damaged, "pcap", streams[file]).notes !== "";
    } catch (error) {
      ++refused;
      assert.ok(!error.message.startsWith("the engine has stopped"), `${file}, round ${round}: ${error.message}`);
      assert.equal(error.constructor.name, "InputError", error.stack);
    }
  }
}
assert.ok(refused > tried / 4 && refused < tried, `${refused} of ${tried} damaged captures were refused`);
console.log(`${files.length} captures; ${refused} of ${tried} damaged ones are refused`);
