// What is below the views: why reading ended, the segment table, the differences between two messages.
import {byId, element, span} from "./elements.js";
import {RowList} from "./row_list.js";

const hex = offset => `${offset} (0x${offset.toString(16)})`;

export class FailurePanel {
  constructor(page) { this.page = page; }

  show() {
    const {summary, rest, count, bytes} = this.page.message;
    const panel = byId("failure");
    panel.hidden = !summary.failure;
    panel.replaceChildren();
    if (!summary.failure) return;
    const {offset, path, reason} = summary.failure;
    const where = element("button", {className: "link"}, `offset ${hex(offset)}`);
    where.addEventListener("click", () => this.page.select(count - 1, null));
    panel.append(element("p", {}, element("strong", {}, summary.result), " at ", where, path ? `, in ${path}` : "", `: ${reason}.`));
    const left = bytes.length - offset;
    panel.append(element("p", {}, `What was read before is shown; ${left} byte${left === 1 ? " was" : "s were"} not read.`));
    if (rest.fields.length > 0) {
      const list = element("ul");
      for (const field of rest.fields) list.append(element("li", {}, span("offset", field.start.toString(16).padStart(6, "0")), ` ${field.words}`));
      panel.append(element("p", {}, `Read as fields of ${rest.message}, the rest might be:`), list);
    }
    if (rest.types.length > 0) {
      panel.append(element("p", {}, `By itself, the rest could be ${rest.types.join(", ")}.`));
    }
  }
}

// The messages of a stream or a capture, to choose one from.
export class MessagesPanel {
  constructor(page) {
    this.page = page;
    this.messages = [];
    this.list = new RowList(byId("messages"), (index, row) => this.drawMessage(index, row));
    byId("messages").addEventListener("click", event => {
      const row = event.target.closest("[data-index]");
      if (row) this.choose(Number(row.dataset.index));
    });
    byId("messages").addEventListener("keydown", event => {
      const step = {ArrowDown: 1, ArrowUp: -1}[event.key];
      const next = this.chosen + step;
      if (step === undefined || !(next in this.messages)) return;
      event.preventDefault();
      this.choose(next);
    });
  }

  // What an input holds, read as a type, or each as what it seems to be.
  show({messages, notes}, type) {
    this.messages = messages;
    this.type = type;
    this.chosen = 0;
    const isSingle = messages.length === 1 && messages[0].isSingle;
    byId("messages-panel").hidden = isSingle || messages.length + notes.length === 0;
    byId("messages-summary").textContent =
        `${messages.length} message${messages.length === 1 ? "" : "s"}${notes ? `; ${notes}` : ""}`;
    this.list.setCount(messages.length);
  }

  async choose(index) {
    this.chosen = index;
    this.list.reveal(index);
    this.list.redraw();
    await this.page.openMessage(this.messages[index].bytes, this.type);
  }

  drawMessage(index, row) {
    const {number, time, from, to, bytes} = this.messages[index];
    row.dataset.index = index;
    if (index === this.chosen) row.classList.add("selected");
    row.append(element("button", {className: "link number"}, String(number)));
    if (time) row.append(span("faint", time));
    if (from) row.append(span("name", `${from} > ${to}`));
    row.append(span("", `${bytes.length} byte${bytes.length === 1 ? "" : "s"}`));
    row.setAttribute("role", "listitem");
  }
}

export class SegmentsPanel {
  constructor(page) {
    this.page = page;
    this.entries = [];
    this.panel = byId("segments-panel");
    this.list = new RowList(byId("segments"), (index, row) => this.drawEntry(index, row));
    this.panel.addEventListener("toggle", () => this.show());
    byId("referenced").addEventListener("change", () => this.show());
  }

  async show() {
    if (!this.panel.open || !this.page.message) return;
    const {message} = this.page;
    const table = await this.page.client.call("segments", 0, byId("referenced").checked);
    if (message !== this.page.message) return;
    Object.assign(this, table);
    byId("segments-size").textContent =
        `${table.length} bytes, ${table.entries.length} ${table.entries.length === 1 ? "entry" : "entries"}`;
    this.list.setCount(table.entries.length);
  }

  drawEntry(index, row) {
    const [name, depth, start, length, isReferenced] = this.entries[index];
    const bar = element("span", {className: "bar", "aria-hidden": "true"}, element("span"));
    bar.firstChild.style.marginLeft = isReferenced ? "0" : `${100 * start / this.length}%`;
    bar.firstChild.style.width = isReferenced ? "0" : `${100 * length / this.length}%`;
    row.append(span("number", String(index)), span("number", isReferenced ? "–" : String(start)), span("number", String(length)), bar,
        element("span", {className: "name"}, `${"  ".repeat(depth)}${name}`));
    row.setAttribute("role", "listitem");
  }
}

export class DifferencesPanel {
  constructor(page) {
    this.page = page;
    this.found = [];
    this.panel = byId("differences-panel");
    this.list = new RowList(byId("differences"), (index, row) => this.drawDifference(index, row));
    byId("differences").addEventListener("click", event => {
      const row = event.target.closest("[data-index]");
      if (row) this.page.select(this.page.nodeNamed(this.found[row.dataset.index].path), null);
    });
    byId("compare-end").addEventListener("click", () => this.page.endComparison());
    byId("compare-swap").addEventListener("click", () => this.page.swap());
  }

  async show() {
    const {other, message, type} = this.page;
    this.panel.hidden = !other;
    if (!other) return;
    const result = await this.page.client.call("differences");
    if (message !== this.page.message) return;
    this.found = result.differences;
    const count = this.found.length;
    const order = result.order === 0 ? "" : `; the ${result.order > 0 ? "first" : "second"} is greater`;
    byId("differences-summary").textContent = count === 0
        ? `Both are the same ${type}.`
        : `${count} difference${count === 1 ? "" : "s"} between ${message.bytes.length} and ${other.bytes.length} bytes${order}`;
    this.list.setCount(count);
  }

  drawDifference(index, row) {
    const {path, a, b} = this.found[index];
    row.dataset.index = index;
    row.append(element("button", {className: "link"}, path), span("removed", a), span("added", b));
    row.setAttribute("role", "listitem");
  }
}
