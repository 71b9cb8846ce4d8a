// What the effect and the server tell, newest first, until it is put away.
import { LitElement, css, html, nothing } from 'lit';
import { customElement, state } from 'lit/decorators.js';
import { shared } from './theme';

export interface Message {
  readonly kind: 'error' | 'warning' | 'message';
  readonly text: string;
  readonly command?: string | null;
  readonly isOfPicture?: boolean; // and overcome by the next
}

const most = 4;

@customElement('message-list')
export class MessageList extends LitElement {
  static override styles = [
    shared,
    css`
      :host {
        position: absolute;
        right: 8px;
        bottom: 8px;
        width: min(520px, calc(100% - 16px));
      }
      .message {
        display: grid;
        grid-template-columns: 1fr auto;
        gap: 4px 8px;
        margin-top: 4px;
        padding: 6px 4px 6px 10px;
        border: 1px solid var(--line);
        border-left: 3px solid var(--edge);
        border-radius: 3px;
        background: var(--ground);
        overflow-wrap: anywhere;
      }
      .warning {
        border-left-color: var(--accent);
      }
      .error {
        border-left-color: var(--bad);
      }
      code {
        grid-column: 1 / -1;
        font: var(--mono);
        color: var(--dim);
        user-select: all;
      }
    `,
  ];

  @state() private messages: readonly Message[] = [];

  // The same again is told once, and as an error where it is one.
  add(message: Message): void {
    const same = this.messages.find(({ text }) => text === message.text);
    if (same && (same.kind === message.kind || message.kind !== 'error')) return;
    this.messages = [message, ...this.messages.filter((other) => other !== same)].slice(0, most);
  }

  // What was told of pictures is overcome by one that has come.
  clearOfPictures(): void {
    if (this.messages.some(({ isOfPicture }) => isOfPicture))
      this.messages = this.messages.filter(({ isOfPicture }) => !isOfPicture);
  }

  protected override render() {
    return html`<div role="log" aria-label="Messages" aria-live="polite">
      ${this.messages.map(
        (message) =>
          html`<div class="message ${message.kind}">
            <span>${message.text}</span>
            <button class="bare" aria-label="Put away" title="Put away" @click=${() => this.putAway(message)}>×</button>
            ${message.command ? html`<code>${message.command}</code>` : nothing}
          </div>`,
      )}
    </div>`;
  }

  private putAway(message: Message): void {
    this.messages = this.messages.filter((other) => other !== message);
  }
}
