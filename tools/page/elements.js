// Elements of the page, made and found.

export const byId = id => document.getElementById(id);

export function element(name, properties = {}, ...content) {
  const made = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (key in made) made[key] = value;
    else made.setAttribute(key, value);
  }
  made.append(...content);
  return made;
}

export const span = (className, text) => element("span", {className}, text);
