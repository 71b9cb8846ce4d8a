// One line of the panel: name, control, key and reset.
import { css, html, svg } from 'lit';
import { customElement } from 'lit/decorators.js';
import { shared } from '../app/theme';
import { isKeys, hasKeys, hasValue } from '../model/session';
import { keyAt } from '../model/curve';
import { Control } from './control';
import './angle-control';
import './check-control';
import './colour-control';
import './point-control';
import './popup-control';
import './slider-control';

@customElement('parameter-row')
export class ParameterRow extends Control {
  static override styles = [
    shared,
    css`
      :host {
        display: grid;
        grid-template-columns: var(--name) minmax(0, 1fr) 20px 20px;
        gap: 4px;
        align-items: center;
        min-height: 28px;
      }
      .name {
        overflow: hidden;
        text-overflow: ellipsis;
        white-space: nowrap;
      }
      .name.keyed {
        color: var(--accent);
      }
      button.bare {
        width: 20px;
      }
      button[aria-pressed='true'] svg {
        fill: currentColor;
      }
      button.bare:not(:hover, :focus-visible, [aria-pressed='true']) {
        color: var(--dim);
      }
      button.reset:disabled {
        visibility: hidden;
      }
    `,
  ];

  protected override render() {
    const { key, name, type, hint, enabled } = this.parameter;
    const curve = this.store.curve(key);
    return html`<span class="name ${isKeys(curve) ? 'keyed' : ''}" title=${hint ? `${name}: ${hint}` : name} aria-hidden="true"
        >${name}</span
      >
      ${this.control()}
      ${hasKeys(type) && curve !== undefined && this.store.frames.length > 1
        ? html`<button
            class="bare"
            aria-label="Key of ${name}"
            title="Key at this frame"
            aria-pressed=${keyAt(curve, this.store.frame) !== undefined}
            ?disabled=${!enabled}
            @click=${() => this.store.toggleKey(key)}
          >
            ${svg`<svg viewBox="0 0 14 14" aria-hidden="true"><path d="M7 2.5 11.5 7 7 11.5 2.5 7Z"></path></svg>`}
          </button>`
        : html`<span></span>`}
      ${hasValue(type)
        ? html`<button
            class="bare reset"
            aria-label="Reset ${name}"
            title="Reset"
            ?disabled=${!enabled || this.store.isDefault(key)}
            @click=${() => this.store.reset(key)}
          >
            ${svg`<svg viewBox="0 0 14 14" aria-hidden="true"><path d="M3 5.5a4.5 4.5 0 1 1-.5 3M3 2v3.5h3.5"></path></svg>`}
          </button>`
        : html`<span></span>`}`;
  }

  private control() {
    const { store, parameter } = this;
    switch (parameter.type) {
      case 'slider':
        return html`<slider-control .store=${store} .parameter=${parameter}></slider-control>`;
      case 'angle':
        return html`<angle-control .store=${store} .parameter=${parameter}></angle-control>`;
      case 'checkbox':
        return html`<check-control .store=${store} .parameter=${parameter}></check-control>`;
      case 'popup':
      case 'layer':
        return html`<popup-control .store=${store} .parameter=${parameter}></popup-control>`;
      case 'colour':
        return html`<colour-control .store=${store} .parameter=${parameter}></colour-control>`;
      case 'point':
        return html`<point-control .store=${store} .parameter=${parameter}></point-control>`;
      default:
        return html`<span class="dim">only in the effect's own window</span>`;
    }
  }
}
