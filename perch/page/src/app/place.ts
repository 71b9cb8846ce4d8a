// Sets properties of an element's style one by one, which the page's security policy allows; text in a style
// attribute it does not.
import { noChange } from 'lit';
import { Directive, directive } from 'lit/directive.js';
import type { ElementPart } from 'lit';

type Styles = Readonly<Record<string, string | null>>;

class Place extends Directive {
  render(_styles: Styles): typeof noChange {
    return noChange;
  }

  override update(part: ElementPart, [styles]: [Styles]): typeof noChange {
    const { style } = part.element as HTMLElement;
    for (const [name, value] of Object.entries(styles)) style.setProperty(name, value);
    return noChange;
  }
}

export const place = directive(Place);
