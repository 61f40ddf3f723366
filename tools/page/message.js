// An open message: its nodes, and which of them belong to a byte, to a place in the JSON or to a path.
import {nodeFields} from "./engine.js";

const width = nodeFields.length;
const column = Object.fromEntries(nodeFields.map((name, index) => [name, index]));

export const kinds = {field: 0, list: 1, rest: 2};

export class Message {
  constructor(opened) {
    Object.assign(this, opened);
    this.count = this.nodes.length / width;
    this.inJson = this.orderInJson();
  }

  get(node, name) { return this.nodes[node * width + column[name]]; }

  // The last of the nodes for which a number, which does not decrease from one to the next, is not above a limit.
  lastUpTo(count, numberAt, limit) {
    let low = 0, high = count;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (numberAt(middle) <= limit) low = middle + 1;
      else high = middle;
    }
    return low - 1;
  }

  nodeAtByte(at) { return this.lastUpTo(this.count, node => this.get(node, "start"), at); }

  orderInJson() {
    const order = [];
    let isSorted = true, last = -1;
    for (let node = 0; node < this.count; ++node) {
      if (this.get(node, "jsonEnd") === 0) continue;
      const start = this.get(node, "jsonStart");
      isSorted &&= start >= last;
      last = start;
      order.push(node);
    }
    return isSorted ? order : order.sort((a, b) => this.get(a, "jsonStart") - this.get(b, "jsonStart") || a - b);
  }

  // The innermost node whose value is at an offset in the JSON; for a name, that of its value.
  nodeInJson(at, end) {
    let place = this.lastUpTo(this.inJson.length, each => this.get(this.inJson[each], "jsonStart"), at);
    const next = this.inJson[place + 1];
    let node = place < 0 ? -1 : this.inJson[place];
    while (node >= 0 && at >= this.get(node, "jsonEnd")) node = this.get(node, "parent");
    const isName = next !== undefined && this.get(next, "jsonStart") < end &&
        (node < 0 || this.get(node, "jsonStart") < at) && this.get(next, "jsonEnd") > at;
    const isInside = node >= 0 && this.get(node, "next") === node + 1;
    return isName && !isInside ? next : node;
  }

  // The numbers of the fields from the outermost message to a node, and of the elements.
  pathOf(node) {
    const path = [];
    for (; node >= 0; node = this.get(node, "parent")) path.unshift([this.get(node, "number"), this.get(node, "index")]);
    return path;
  }

  // The node with such a path, or as much of it as there is.
  nodeOf(path) {
    let found = -1;
    for (const [number, index] of path) {
      const end = found < 0 ? this.count : this.get(found, "next");
      let match = -1;
      for (let node = found + 1; node < end; node = this.get(node, "next")) {
        if (this.get(node, "number") === number && this.get(node, "index") === index) match = node;
      }
      if (match < 0) break;
      found = match;
    }
    return found;
  }
}
