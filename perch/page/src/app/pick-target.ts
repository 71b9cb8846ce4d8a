// Which parameter a click in the picture sets.
import { css, html } from 'lit';
import { customElement, property } from 'lit/decorators.js';
import type { FocusPicker } from '../picture/focus-picker';
import { StoreElement } from './store-element';
import { shared } from './theme';

@customElement('pick-target')
export class PickTarget extends StoreElement {
  static override styles = [
    shared,
    css`
      :host {
        display: grid;
        grid-template-columns: var(--name) 1fr;
        gap: 4px;
        align-items: center;
        padding: 8px 12px;
        border-top: 1px solid var(--line);
      }
    `,
  ];

  @property({ attribute: false }) picker!: FocusPicker;

  protected override render() {
    const targets = this.store.session.parameters.filter(
      ({ type, visible, enabled }) => visible && enabled && (type === 'slider' || type === 'point'),
    );
    return html`<span aria-hidden="true">Click sets</span>
      <select
        aria-label="Click sets"
        @change=${(event: Event) => (this.picker.target = (event.target as HTMLSelectElement).value || null)}
      >
        <option value="" .selected=${this.picker.target === null}>nothing</option>
        ${targets.map(
          ({ key, name }) => html`<option value=${key} .selected=${key === this.picker.target}>${name}</option>`,
        )}
      </select>`;
  }
}
