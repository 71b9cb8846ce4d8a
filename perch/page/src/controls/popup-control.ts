// One of several items: of a popup, or for a layer one of the files given.
import { css, html } from 'lit';
import { customElement } from 'lit/decorators.js';
import { shared } from '../app/theme';
import { Control } from './control';

const noLayer = 'none';

@customElement('popup-control')
export class PopupControl extends Control {
  static override styles = [
    shared,
    css`
      select {
        width: 100%;
      }
    `,
  ];

  private get items(): readonly string[] {
    if (this.parameter.type !== 'layer') return this.parameter.items ?? [];
    if (this.value === undefined) return [this.given];
    return [noLayer, ...new Set(this.store.session.layers.map(({ file }) => file))];
  }

  // The file given for this layer on the command line.
  private get given(): string {
    return this.store.session.layers.find(({ parameter }) => parameter === this.parameter.name)?.file ?? noLayer;
  }

  protected override render() {
    const { name, enabled, hint } = this.parameter;
    const value = String(this.value ?? this.given);
    return html`<select
      aria-label=${name}
      aria-description=${hint ?? ''}
      ?disabled=${!enabled || this.value === undefined}
      @change=${(event: Event) => this.settle((event.target as HTMLSelectElement).value)}
    >
      ${this.items.map((item) =>
        isLine(item)
          ? html`<hr />`
          : html`<option value=${item} .selected=${item === value}>${label(item)}</option>`,
      )}
    </select>`;
  }
}

// Effects write "(-" for a line between items.
function isLine(item: string): boolean {
  return item.startsWith('(-');
}

function label(item: string): string {
  return item === noLayer ? 'None' : (item.split('/').at(-1) ?? item);
}
