// A number to type, with its unit. Enter or leaving takes it, Escape gives it up; the arrow keys step, ten steps
// with Shift. Takes short sums such as 62+3.
import { LitElement, css, html } from 'lit';
import { customElement, property, query } from 'lit/decorators.js';
import { clamped, parsed, rounded, shown } from '../model/number';
import { shared } from '../app/theme';

@customElement('number-field')
export class NumberField extends LitElement {
  static override styles = [
    shared,
    css`
      :host {
        position: relative;
      }
      input[type='text'] {
        width: 100%;
        text-align: right;
        padding: 0 6px 0 4px;
      }
      input.short[type='text'] {
        padding-right: 19px;
      }
      input.long[type='text'] {
        padding-right: 26px;
      }
      .unit {
        position: absolute;
        right: 5px;
        top: 3px;
        color: var(--dim);
        pointer-events: none;
      }
    `,
  ];

  @property() name = '';
  @property() unit = '';
  @property({ type: Number }) value = 0;
  @property({ type: Number }) minimum = -Infinity;
  @property({ type: Number }) maximum = Infinity;
  @property({ type: Number }) precision = 0;
  @property({ type: Boolean }) disabled = false;
  @query('input') private input!: HTMLInputElement;

  protected override render() {
    return html`<input
        type="text"
        class=${this.unit === '' ? '' : this.unit.length === 1 ? 'short' : 'long'}
        role="spinbutton"
        inputmode="decimal"
        autocomplete="off"
        spellcheck="false"
        aria-label=${this.name}
        aria-valuenow=${this.value}
        aria-valuetext=${shown(this.value, this.precision) + (this.unit ? ` ${this.unit}` : '')}
        aria-valuemin=${Number.isFinite(this.minimum) ? this.minimum : -1e9}
        aria-valuemax=${Number.isFinite(this.maximum) ? this.maximum : 1e9}
        ?disabled=${this.disabled}
        .value=${shown(this.value, this.precision)}
        @focus=${() => this.input.select()}
        @change=${this.take}
        @keydown=${this.key}
      /><span class="unit" aria-hidden="true">${this.unit}</span>`;
  }

  private take(): void {
    const number = parsed(this.input.value);
    if (number !== null) this.tell(number);
    this.input.value = shown(this.value, this.precision);
  }

  private key(event: KeyboardEvent): void {
    const step = 10 ** -this.precision * (event.shiftKey ? 10 : 1);
    const direction = { ArrowUp: 1, ArrowDown: -1 }[event.key];
    if (event.key === 'Enter') {
      this.take();
      this.input.select();
    } else if (event.key === 'Escape') {
      this.input.value = shown(this.value, this.precision);
    } else if (direction) {
      event.preventDefault();
      this.tell((parsed(this.input.value) ?? this.value) + direction * step);
    }
  }

  private tell(number: number): void {
    const value = rounded(clamped(number, this.minimum, this.maximum), Math.max(this.precision, 4));
    if (value === this.value) return;
    this.value = value;
    this.input.value = shown(value, this.precision);
    this.dispatchEvent(new Event('value'));
  }
}
