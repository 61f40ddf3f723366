// The fields as a tree: names, values that can be edited, and presence.
import {byId, element, span} from "./elements.js";
import {kinds} from "./message.js";
import {RowList} from "./row_list.js";

const root = -1;
const manyNodes = 4000;  // a greater message is shown folded

export class TreeView {
  constructor(page) {
    this.page = page;
    this.frame = byId("tree");
    this.visible = [];
    this.toggled = new Map();  // the paths of nodes that are not open or closed as at first
    this.list = new RowList(this.frame, (index, row) => this.drawNode(this.visible[index], row));
    this.frame.addEventListener("pointerover", event => this.page.mark(this.nodeOf(event.target)));
    this.frame.addEventListener("pointerleave", () => this.page.mark(root));
    this.frame.addEventListener("click", event => this.click(event));
    this.frame.addEventListener("change", event => this.changed(event));
    this.frame.addEventListener("keydown", event => this.key(event));
    this.editor = this.makeEditor();
  }

  get message() { return this.page.message; }

  show() {
    if (this.type !== this.page.type) this.toggled.clear();
    this.type = this.page.type;
    this.toggledNodes = new Set([...this.toggled.values()].map(path => this.message.nodeOf(path)));
    this.arrange();
    if (this.edited) this.placeEditor();
  }

  arrange() {
    const {message} = this;
    this.visible = [root];
    for (let node = 0; node < message.count;) {
      this.visible.push(node);
      node = this.hasNodes(node) && !this.isOpen(node) ? message.get(node, "next") : node + 1;
    }
    this.list.setCount(this.visible.length);
  }

  redraw() { this.list.redraw(); }

  hasNodes(node) { return node === root ? this.message.count > 0 : this.message.get(node, "next") > node + 1; }

  isOpen(node) {
    if (node === root) return true;
    const {message} = this;
    const isNumbers = message.get(node, "kind") === kinds.list && message.get(node + 1, "next") === node + 2;
    const isOpenAtFirst = !isNumbers && (message.count <= manyNodes || message.get(node, "depth") < 2);
    return isOpenAtFirst !== this.toggledNodes.has(node);
  }

  toggle(node) {
    if (node === root || !this.hasNodes(node)) return;
    const path = this.message.pathOf(node);
    const key = JSON.stringify(path);
    if (!this.toggled.delete(key)) this.toggled.set(key, path);
    this.show();
  }

  // --- Drawing ---

  drawNode(node, row) {
    const {message} = this;
    const words = node === root ? null : this.page.descriptions.get(node);
    const depth = node === root ? 0 : message.get(node, "depth") + 1;
    row.id = `node${node}`;
    row.dataset.node = node;
    row.style.setProperty("--depth", depth);
    row.setAttribute("role", "treeitem");
    row.setAttribute("aria-level", String(depth + 1));
    row.setAttribute("aria-selected", String(node === this.page.selected));
    if (node === this.page.current && node !== root) row.classList.add("marked");
    if (node === this.page.selected) row.classList.add("selected");
    if (this.hasNodes(node)) {
      row.setAttribute("aria-expanded", String(this.isOpen(node)));
      row.append(element("span", {className: "fold", "aria-hidden": "true"}, this.isOpen(node) ? "▾" : "▸"));
    } else {
      row.append(span("fold", ""));
    }
    if (node === root) return this.drawRoot(row);
    if (words === null) return row.append(span("faint", "…"));
    row.classList.add(words.state);
    if (words.removable) row.append(this.presenceOf(node, words));
    row.append(span("name", words.name));
    this.drawValue(node, words, row);
    if (words.kind) row.append(span("faint", words.kind));
    if (words.remarks) row.append(span("remarks", words.remarks.replace(/^, /, "")));
    if (words.message || message.get(node, "kind") === kinds.list) row.append(this.adding(node, words));
  }

  drawRoot(row) {
    row.append(span("name", this.page.type), span("meaning", `: ${this.message.bytes.length} bytes`), this.adding(root));
  }

  presenceOf(node, words) {
    return element("input", {
      type: "checkbox", checked: true, tabIndex: -1, className: "presence", "aria-label": `${words.name} is present`,
      title: "Present: clear to remove it",
    });
  }

  drawValue(node, words, row) {
    if (words.value === undefined || words.state === "unknown") return row.append(span("meaning", words.meaning));
    if (words.value === "true" || words.value === "false") {
      row.append(element("button", {className: "value", tabIndex: -1, title: "Change"}, words.value));
      return;
    }
    const text = words.value.length > 80 ? `${words.value.slice(0, 80)}…` : words.value;
    row.append(element("button", {className: "value", tabIndex: -1, title: "Edit"}, text));
    if (words.address) row.append(span("address", words.address));
  }

  // What a message or a list may have in addition.
  adding(node, words) {
    if (words?.state === "failed") return "";
    if (node !== root && this.message.get(node, "kind") === kinds.list) {
      return element("button", {className: "add", tabIndex: -1, title: "Add an element", "aria-label": "Add an element"}, "+");
    }
    const present = new Set();
    const end = node === root ? this.message.count : this.message.get(node, "next");
    for (let child = node + 1; child < end; child = this.message.get(child, "next")) {
      present.add(this.message.get(child, "number"));
    }
    const absent = this.page.fieldsOf(words?.message ?? this.page.type).filter(field => !present.has(field.number));
    if (absent.length === 0) return "";
    return element("select", {className: "add", tabIndex: -1, "aria-label": "Add a field", title: "Fields that are absent"},
        element("option", {value: ""}, `+ ${absent.length} absent`),
        ...absent.map(field => element("option", {value: field.number}, `${field.name} (${field.kind})`)));
  }

  // --- Acting ---

  nodeOf(target) {
    const row = target.closest?.("[data-node]");
    return row ? Number(row.dataset.node) : root;
  }

  click(event) {
    const node = this.nodeOf(event.target);
    if (event.target.closest(".editor")) return;
    if (event.target.matches(".fold")) return this.toggle(node);
    if (event.target.matches("button.add")) return this.page.tryChange("withElement", node);
    if (event.target.matches(".presence")) {
      event.preventDefault();
      return this.page.tryChange("without", node);
    }
    if (event.target.matches(".value")) this.edit(node);
    if (!event.target.matches("select")) this.page.select(node, this);
  }

  changed(event) {
    if (!event.target.matches("select.add") || event.target.value === "") return;
    this.page.tryChange("withField", this.nodeOf(event.target), Number(event.target.value));
  }

  key(event) {
    if (event.target !== this.frame || !this.message) return;
    const node = this.page.selected;
    const at = Math.max(0, this.visible.indexOf(node));
    const go = index => this.page.select(this.visible[Math.min(Math.max(index, 0), this.visible.length - 1)], null);
    const isOpen = this.hasNodes(node) && this.isOpen(node);
    const actions = {
      ArrowDown: () => go(at + 1),
      ArrowUp: () => go(at - 1),
      PageDown: () => go(at + 15),
      PageUp: () => go(at - 15),
      Home: () => go(0),
      End: () => go(this.visible.length - 1),
      ArrowRight: () => isOpen ? go(at + 1) : this.toggle(node),
      ArrowLeft: () => isOpen ? this.toggle(node) : this.page.select(node === root ? root : this.message.get(node, "parent"), null),
      Enter: () => this.edit(node),
      " ": () => this.edit(node),
      Delete: () => node !== root && this.page.tryChange("without", node),
      Insert: () => this.frame.querySelector(`#node${node} .add`)?.focus(),
    };
    if (!(event.key in actions)) return;
    event.preventDefault();
    actions[event.key]();
  }

  reveal(node) {
    for (let outer = node < 0 ? root : this.message.get(node, "parent"); outer !== root; outer = this.message.get(outer, "parent")) {
      if (!this.isOpen(outer)) this.toggle(outer);
    }
    this.list.reveal(this.visible.indexOf(node));
    this.frame.setAttribute("aria-activedescendant", `node${node}`);
  }

  // --- The editor: over the row of the node, so that rows may be drawn anew beneath it ---

  makeEditor() {
    const input = element("input", {type: "text", spellcheck: false, autocomplete: "off"});
    const problem = element("output", {className: "problem", role: "alert", id: "edit-problem"});
    input.setAttribute("aria-describedby", problem.id);
    const editor = element("div", {className: "editor", hidden: true}, input, problem);
    input.addEventListener("input", () => this.apply());
    input.addEventListener("keydown", event => {
      if (event.key !== "Enter" && event.key !== "Escape") return;
      event.stopPropagation();
      this.endEdit();
      this.frame.focus();
    });
    input.addEventListener("blur", () => this.endEdit());
    this.list.space.append(editor);
    return Object.assign(editor, {input, problem});
  }

  edit(node) {
    const words = node === root ? null : this.page.descriptions.get(node);
    if (words?.value === undefined) return this.toggle(node);
    if (words.value === "true" || words.value === "false") {
      return this.page.tryChange("withValue", node, words.value === "true" ? "false" : "true");
    }
    this.isText = words.value.startsWith("\"");
    // Numbers are given in quotes, so that what is no number is refused as such.
    this.isNumber = /^"?-?\d+"?$/.test(words.value) && !words.kind.startsWith("string");
    this.edited = this.message.pathOf(node);
    this.editor.input.value = this.isText || this.isNumber ? JSON.parse(words.value) : words.value;
    this.editor.input.setAttribute("aria-label", `${words.parent}${words.name}, ${words.kind}`);
    this.say("");
    this.placeEditor();
    this.editor.input.focus();
    this.editor.input.select();
  }

  placeEditor() {
    const node = this.message.nodeOf(this.edited);
    this.editor.hidden = false;
    this.editor.style.transform = `translateY(${this.list.place(this.visible.indexOf(node))}px)`;
    this.editor.style.setProperty("--depth", this.message.get(node, "depth") + 1);
  }

  async apply() {
    const {value} = this.editor.input;
    const path = this.edited;
    try {
      await this.page.change("withValue", this.message.nodeOf(path), this.isText || this.isNumber ? JSON.stringify(value) : value);
      this.say("");
    } catch (error) {
      if (path === this.edited) this.say(error.message);
    }
  }

  say(problem) {
    this.editor.problem.textContent = problem;
    this.editor.input.setAttribute("aria-invalid", String(problem !== ""));
  }

  endEdit() {
    this.edited = null;
    this.editor.hidden = true;
  }
}
