// The engine: zorv-inspect and the library, compiled to WebAssembly. Everything here is synchronous; the page calls it in
// a worker.
import {bytesOf, textOf} from "./text.js";

// Forms of bytes and text, as the module numbers them.
export const forms = {auto: 0, raw: 1, hex: 2, dump: 3, base64: 4, pcap: 5, text: 16, c: 17, annotated: 18};

// How a stream is cut into messages.
export const streams = ["none", "varint", "be16", "be32", "le32", "lines"];

// The numbers of one node of the tree, in their order.
export const nodeFields =
    ["kind", "depth", "parent", "next", "start", "ownEnd", "end", "row", "number", "index", "jsonStart", "jsonEnd"];

// What is wrong with an input. `at` is its offset in the text that was given, or -1.
export class InputError extends Error {
  constructor(message, at) {
    super(message);
    this.at = at;
  }
}

// One memory of the module. A call that fails leaves it in the middle of something: then it must not be used again.
class Instance {
  constructor(module) {
    const page = {
      fail: (text, size, at) => {
        throw new InputError(textOf(new Uint8Array(this.exports.memory.buffer, text, size)), at);
      },
    };
    this.exports = new WebAssembly.Instance(module, {page}).exports;
    this.exports._initialize();
  }

  // Calls a function. Bytes and strings are passed as an address and a size; the result is a copy.
  call(name, ...given) {
    const blocks = [];
    const passed = given.flatMap(each => {
      if (typeof each === "number" || typeof each === "boolean") return [Number(each)];
      const bytes = typeof each === "string" ? bytesOf(each) : each;
      const block = this.exports.allocate(bytes.length || 1);
      if (block === 0) throw new InputError("not enough memory for the input", -1);
      blocks.push(block);
      new Uint8Array(this.exports.memory.buffer, block, bytes.length).set(bytes);
      return [block, bytes.length];
    });
    const returned = this.exports[name](...passed);
    for (const block of blocks) this.exports.release(block);
    if (returned !== undefined) return returned;
    return new Uint8Array(this.exports.memory.buffer, this.exports.result_data(), this.exports.result_size()).slice();
  }
}

const jsonOf = bytes => JSON.parse(textOf(bytes));
const numbersOf = bytes => new Int32Array(bytes.buffer);

export class Engine {
  constructor(module) {
    this.module = module;
    this.instance = new Instance(module);
    this.opened = [null, null];  // the messages in the two places, for an instance that replaces a failed one
  }

  call(name, ...given) {
    try {
      return this.instance.call(name, ...given);
    } catch (error) {
      this.restart();
      // A trap of the module: it has run out of memory.
      if (error instanceof WebAssembly.RuntimeError || error instanceof RangeError) {
        throw new InputError(`the engine has stopped: ${error.message}`, -1);
      }
      throw error;
    }
  }

  restart() {
    this.instance = new Instance(this.module);
    this.opened.forEach((message, place) => {
      try {
        if (message) this.instance.call("open_message", place, message.type, message.bytes);
      } catch {
        this.opened[place] = null;
        this.instance = new Instance(this.module);
      }
    });
  }

  types() { return jsonOf(this.call("types")); }
  guess(bytes) { return jsonOf(this.call("guess_types", bytes)); }
  formOf(bytes) { return ["bytes", "json", "text"][this.call("form_of", bytes)]; }
  bytesOf(bytes, form = "auto") { return this.call("bytes_of", bytes, forms[form]); }
  encode(type, text, isJson = true) { return this.call("encode", type, text, isJson); }

  // The messages in an input, and what there is to say about what was left out.
  messagesIn(bytes, form = "auto", stream = "none", port = 0) {
    const messages = [];
    try {
      this.call("open_input", bytes, forms[form], streams.indexOf(stream), port);
      for (let known; (known = jsonOf(this.call("next_input"))) !== null;) {
        messages.push({...known, bytes: this.call("input_bytes")});
      }
      return {messages, notes: textOf(this.call("input_notes")).trim()};
    } catch (error) {
      if (messages.length === 0) throw error;
      return {messages, notes: error.message};
    }
  }

  // A message for one of the two places: what the page says about it, its nodes and its JSON.
  open(place, type, bytes) {
    this.opened[place] = null;
    const summary = jsonOf(this.call("open_message", place, type, bytes));
    this.opened[place] = {type, bytes};
    return {
      summary,
      bytes,
      nodes: numbersOf(this.call("nodes", place)),
      json: this.call("json_text", place),
      lines: numbersOf(this.call("json_line_starts", place)),
      rest: jsonOf(this.call("rest", place)),
    };
  }

  describe(place, first, count) { return jsonOf(this.call("describe_nodes", place, first, count)); }
  segments(place, referenced) { return jsonOf(this.call("segments", place, referenced)); }
  differences() { return jsonOf(this.call("differences_of_both")); }
  written(place, form) { return this.call("written", place, forms[form]); }

  withValue(node, value) { return this.call("with_value", 0, node, value); }
  withField(container, number) { return this.call("with_field", 0, container, number); }
  withElement(list) { return this.call("with_element", 0, list); }
  without(node) { return this.call("without", 0, node); }

  // The messages that can be made from a text, for when it does not say which it is.
  typesOf(text, isJson) {
    return this.types().map(type => type.name).filter(name => {
      try {
        this.encode(name, text, isJson);
        return true;
      } catch {
        return false;
      }
    });
  }
}
