// The words of nodes, asked for a block at a time when they are first looked at.

const block = 128;

export class Descriptions {
  constructor(client, arrived) {
    this.client = client;
    this.arrived = arrived;
    this.reset();
  }

  reset() {
    this.blocks = new Map();
    this.serial = (this.serial ?? 0) + 1;
  }

  // Null as long as they are on their way.
  get(node) {
    const first = node - node % block;
    const known = this.blocks.get(first);
    if (known === undefined) this.fetch(first);
    return known?.[node - first] ?? null;
  }

  async fetch(first) {
    const serial = this.serial;
    this.blocks.set(first, null);
    const found = await this.client.call("describe", 0, first, block);
    if (serial !== this.serial) return;
    this.blocks.set(first, found);
    this.arrived();
  }
}
